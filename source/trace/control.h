// The settings a trace control string selects, and its parser.
#ifndef TQL70_SOURCE_TRACE_CONTROL_H
#define TQL70_SOURCE_TRACE_CONTROL_H

#include <string>
#include <vector>

namespace tql::trace {

struct Settings {
    bool debug = false;                 // d: DBUG_PRINT output
    std::vector<std::string> keywords;  // d,kw,...: only these (empty: all)
    bool trace = false;                 // t: entry and exit lines
    int max_depth = 0;                  // t,N: deepest level traced (0: any)
    std::vector<std::string> functions; // f,fn,...: only in these (empty: all)
    bool file = false;                  // F: source file on each line
    bool line = false;                  // L: source line on each line
    bool depth = false;                 // n: nesting depth on each line
    bool process = false;               // P: process name on each line
    std::string output;                 // o,file: output file ("": stderr)
    bool profile = false;               // g: calls and time per function
};

// Settings from a control string of ':'-separated flags, each a letter
// optionally followed by ",value,value...". Unknown flags are ignored; a
// leading "-#" (the traditional command-line prefix) is skipped.
Settings parse_control(const std::string& control);

} // namespace tql::trace

#endif
