// Routing of a report to a hook or the current handler, and the stderr
// printout of coded reports shared by errors, warnings and messages.
#include "error/error_state.h"

#include <cstdio>
#include <string>

namespace tql::error {

int dispatch_report(LegacyReportFunction hook, ReportKind kind, const char* module,
                    int code, const char* message, const char* text)
{
    if (hook) {
        // Hooks take mutable strings; they get copies, so a hook that
        // writes into its arguments cannot damage the caller's texts.
        std::string module_copy = module ? module : "";
        std::string message_copy = message ? message : "";
        std::string text_copy = text ? text : "";
        return hook(&module_copy[0], code, &message_copy[0], &text_copy[0]);
    }
    if (ErrorHandler* handler = current_handler()) {
        return handler->handle_report(kind, module, code, message, text) ? 1 : 0;
    }
    return 0;
}

int print_coded_report(const char* head, const char* module, int code,
                       const char* message, const char* text)
{
    std::fprintf(stderr, "%s%6s%04d", head, module ? module : "(null)", code);
    if (text && *text) {
        std::fprintf(stderr, " %s", text);
    }
    return std::fprintf(stderr, ": %s\n", message ? message : "(null)");
}

} // namespace tql::error
