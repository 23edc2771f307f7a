// ErrorHandler: the stack of application handlers and the hooks each one
// carries, with the global hooks used when no handler is installed.
#include "error/error_state.h"

#include <QByteArray>
#include <QString>

namespace tql::error {

ErrorHandler*& current_handler()
{
    static ErrorHandler* handler = nullptr;
    return handler;
}

LegacyReportFunction& global_error_function()
{
    static LegacyReportFunction fn = nullptr;
    return fn;
}

LegacyReportFunction& global_warning_function()
{
    static LegacyReportFunction fn = nullptr;
    return fn;
}

LegacyReportFunction error_hook()
{
    const ErrorHandler* handler = current_handler();
    return handler ? handler->get_legacy_error_function() : global_error_function();
}

LegacyReportFunction warning_hook()
{
    const ErrorHandler* handler = current_handler();
    return handler ? handler->get_legacy_warning_function() : global_warning_function();
}

} // namespace tql::error

using namespace tql::error;

ErrorHandler::ErrorHandler()
    : previous(current_handler()), legacy_error_function(nullptr), legacy_warning_function(nullptr)
{
    current_handler() = this;
}

ErrorHandler::~ErrorHandler()
{
    current_handler() = previous;
}

void ErrorHandler::set_legacy_error_function(LegacyReportFunction fn)
{
    legacy_error_function = fn;
}

void ErrorHandler::set_legacy_warning_function(LegacyReportFunction fn)
{
    legacy_warning_function = fn;
}

LegacyReportFunction ErrorHandler::get_legacy_error_function() const
{
    return legacy_error_function;
}

LegacyReportFunction ErrorHandler::get_legacy_warning_function() const
{
    return legacy_warning_function;
}

void ErrorHandler::report_error(const char* text)
{
    set_pending_flag(0);
    handle_report(kReportError, "", -1, "", text);
}

void ErrorHandler::report_error(const std::string& text)
{
    report_error(text.c_str());
}

void ErrorHandler::report_error(const QString& text)
{
    report_error(text.toLocal8Bit().constData());
}

void ErrorHandler::report_warning(const char* text)
{
    handle_report(kReportWarning, "", -1, "", text);
}

void ErrorHandler::report_warning(const std::string& text)
{
    report_warning(text.c_str());
}

void ErrorHandler::report_warning(const QString& text)
{
    report_warning(text.toLocal8Bit().constData());
}
