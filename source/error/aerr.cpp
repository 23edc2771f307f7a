// The aerr_ family: coded errors on the pending record, coded warnings and
// messages, their hooks, and the fatal exits.
#include "error/error_state.h"

#include <tql70/aerr.h>

#include <QMutexLocker>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace tql::error;

namespace {

LegacyReportFunction message_function = nullptr;
AerrExitFunction exit_function = nullptr;

// Formats a report text, cut at AERR_MAX_TEXT characters; a null format
// gives the empty text.
std::string format_text(const char* format, va_list args)
{
    if (!format) {
        return std::string();
    }
    char buffer[AERR_MAX_TEXT + 1];
    std::vsnprintf(buffer, sizeof buffer, format, args);
    return buffer;
}

void set_coded_error(const char* module, int code, const char* message, std::string text)
{
    QMutexLocker locker(&error_lock);
    PendingRecord& record = pending_record();
    record.module = module;
    record.code = code;
    record.message = message;
    record.text.swap(text);
    set_pending_flag(1);
}

// The one way out of the process on a fatal report.
[[noreturn]] void fatal_exit()
{
    if (exit_function) {
        exit_function();
    }
    std::exit(1);
}

} // namespace

extern "C" {

int aerr_set(const char* module, int code, const char* message, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = format_text(format, args);
    va_end(args);
    set_coded_error(module, code, message, std::move(text));
    return 1;
}

void aerr_process_error(const char* module, int code, const char* message, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = format_text(format, args);
    va_end(args);
    set_coded_error(module, code, message, std::move(text));
    report_pending_error();
}

int aerr_get(const char** module, int* code, const char** text)
{
    QMutexLocker locker(&error_lock);
    if (!pending_flag()) {
        return 0;
    }
    const PendingRecord& record = pending_record();
    if (module) {
        *module = record.module;
    }
    if (code) {
        *code = record.code;
    }
    if (text) {
        *text = record.text.c_str();
    }
    return 1;
}

int aerr_report(void)
{
    if (!pending_flag()) {
        return 0;
    }
    report_pending_error();
    return 1;
}

int aerr_process_warning(const char* module, int code, const char* message, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const std::string text = format_text(format, args);
    va_end(args);
    if (int handled = dispatch_report(warning_hook(), kReportWarning, module, code, message, text.c_str())) {
        return handled;
    }
    return print_coded_report("WARNING ", module, code, message, text.c_str());
}

int aerr_process_message(const char* module, int code, const char* message, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const std::string text = format_text(format, args);
    va_end(args);
    // Messages go to the global message function only; handlers are
    // never asked, so no handler fallback here.
    if (message_function) {
        if (int handled = dispatch_report(message_function, kReportWarning, module, code, message, text.c_str())) {
            return handled;
        }
    }
    return print_coded_report("INFO    ", module, code, message, text.c_str());
}

void aerr_fatal_error(const char* file, int line)
{
    std::fprintf(stderr, "FATAL ERROR: in %s, line %d\n", file ? file : "(null)", line);
    fatal_exit();
}

void aerr_memory_error(void)
{
    std::fprintf(stderr, "FATAL ERROR: out of memory\n");
    fatal_exit();
}

LegacyReportFunction aerr_set_error_function(LegacyReportFunction fn)
{
    if (ErrorHandler* handler = current_handler()) {
        handler->set_legacy_error_function(fn);
    } else {
        global_error_function() = fn;
    }
    return fn;
}

LegacyReportFunction aerr_get_error_function(void)
{
    return error_hook();
}

LegacyReportFunction aerr_set_warning_function(LegacyReportFunction fn)
{
    if (ErrorHandler* handler = current_handler()) {
        handler->set_legacy_warning_function(fn);
    } else {
        global_warning_function() = fn;
    }
    return fn;
}

LegacyReportFunction aerr_get_warning_function(void)
{
    return warning_hook();
}

LegacyReportFunction aerr_set_message_function(LegacyReportFunction fn)
{
    message_function = fn;
    return fn;
}

LegacyReportFunction aerr_get_message_function(void)
{
    return message_function;
}

AerrExitFunction aerr_set_exit_function(AerrExitFunction fn)
{
    exit_function = fn;
    return fn;
}

} // extern "C"
