// The catalogue handle and the module state that the message files share:
// the settings read at open, the message separator and the trace.
#ifndef TQL70_SOURCE_MESSAGES_GMSG_INTERNAL_H
#define TQL70_SOURCE_MESSAGES_GMSG_INTERNAL_H

#include <tql70/glist.h>
#include <tql70/gmsg.h>
#include <tql70/gui_env.h>

#include <string>

struct GmsgCatalogue {
    char* set_name;
    char* extension;
    char* font;
    char* language;
    GuiEnv directory;
    glist messages;
    bool set_has_separator; // whether a message of the loaded set holds one
};

namespace gmsg_internal {

constexpr int kValueSize = 2048;

struct Settings {
    std::string directory_file;
    std::string language;
    std::string extension;
    std::string font;
};

// Writes a trace line to the standard error stream when tracing is on.
void trace(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Turns tracing on when ZQTARVEX_DEBUG_MODE is "all" or "msg".
void update_trace_flag();
// Traces "gmsg: ERROR = " and the text of GuiErrno.
void trace_error();
// The process-wide set-up of the first successful open: the default
// environment and the message separator. False (GuiErrno 5) when the
// default environment cannot be made.
bool initialise_once();
// The message separator (at most 7 characters).
const char* separator();
// Reads the settings of `config_name` for `prefix` and `language`; false
// with GuiErrno set when the configuration or the directory file variable
// cannot be had.
bool read_settings(const char* config_name, const char* prefix, const char* language, Settings& settings);

} // namespace gmsg_internal

#endif
