// Module state of error reporting shared by the pending-error functions,
// ErrorHandler and the aerr_ family: the pending-error record, its lock,
// the current handler and the global hooks.
#ifndef TQL70_SOURCE_ERROR_ERROR_STATE_H
#define TQL70_SOURCE_ERROR_ERROR_STATE_H

#include <tql70/error.h>

#include <QMutex>

#include <string>

// The one lock of the error module; it guards the pending-error record and
// nothing else, and is never held while a hook, a handler or stderr is
// called. Non-recursive: code that holds it uses the _no_lock setter.
extern QMutex error_lock;

namespace tql::error {

// The pending error. module and message are the callers' pointers, never
// copies; text is owned. Guarded by error_lock; AerrFlag lives outside the
// record because it is exported and read without the lock.
struct PendingRecord {
    const char* module = nullptr;
    int code = 0;
    const char* message = nullptr;
    std::string text;
};
PendingRecord& pending_record();

// AerrFlag is read and written atomically by the library, so unlocked
// readers (error_pending, report_pending_error) see a whole value.
int pending_flag();
void set_pending_flag(int value);

// Current handler (null when none) and the hooks used when none is
// installed. Unguarded: handlers are installed by one thread.
ErrorHandler*& current_handler();
LegacyReportFunction& global_error_function();
LegacyReportFunction& global_warning_function();

// The legacy error/warning hook in force: the current handler's own, or
// the global one when no handler is installed.
LegacyReportFunction error_hook();
LegacyReportFunction warning_hook();

// Appends `part` to `text`, which ends with the part `previous`: a line
// feed goes between them unless `text` is empty, `previous` ends in one, or
// `part` begins with one. Only the first character of `part` and the last
// of `previous` are looked at, so an empty part still gets a line feed in
// front of it, and the part after an empty part gets one too:
// ("a", "", "c") joins to "a\n\nc".
void join_part(std::string& text, const char* previous, const char* part);

// Report kinds given to ErrorHandler::handle_report.
enum ReportKind { kReportError = 1, kReportWarning = 2 };

// Hands a report to `hook` when set (handled when it returns non-zero),
// else to the current handler's handle_report (handled when true). Returns
// the hook's result, 1 for a handler that took it, 0 when not handled.
int dispatch_report(LegacyReportFunction hook, ReportKind kind, const char* module,
                    int code, const char* message, const char* text);

// Prints a coded report to stderr: the eight-column head word ("ERROR   ",
// "WARNING ", "INFO    "), module in six columns and code in four digits,
// " text" when the text is non-empty, and ": message\n". Returns the
// result of the last print.
int print_coded_report(const char* head, const char* module, int code,
                       const char* message, const char* text);

} // namespace tql::error

#endif
