// The pending error of the process: its record and lock, the setters,
// location lines, and reporting through hooks, the handler or stderr.
#include "error/error_state.h"

#include <QByteArray>
#include <QMutexLocker>
#include <QString>

#include <cstdio>
#include <cstring>

// Constant-initialised, so it exists before any static constructor of an
// application can report an error.
QMutex error_lock;

extern "C" {
int AerrFlag = 0;
}

namespace tql::error {

// Never destroyed, so errors reported from exit handlers and static
// destructors of the application still find the record.
PendingRecord& pending_record()
{
    static PendingRecord* record = new PendingRecord;
    return *record;
}

int pending_flag()
{
    return __atomic_load_n(&AerrFlag, __ATOMIC_ACQUIRE);
}

void set_pending_flag(int value)
{
    __atomic_store_n(&AerrFlag, value, __ATOMIC_RELEASE);
}

void join_part(std::string& text, const char* previous, const char* part)
{
    const size_t previous_length = std::strlen(previous);
    const bool previous_ends_line = previous_length > 0 && previous[previous_length - 1] == '\n';
    if (!text.empty() && !previous_ends_line && part[0] != '\n') {
        text += '\n';
    }
    text += part;
}

} // namespace tql::error

using namespace tql::error;

extern "C" void set_pending_error_no_lock(const char* text)
{
    PendingRecord& record = pending_record();
    record.text = text ? text : "";
    record.module = "";
    record.message = "";
    record.code = -1;
    set_pending_flag(1);
}

void set_pending_error(const char* text)
{
    QMutexLocker locker(&error_lock);
    set_pending_error_no_lock(text);
}

void set_pending_error(const std::string& text)
{
    set_pending_error(text.c_str());
}

void set_pending_error(const QString& text)
{
    set_pending_error(text.toLocal8Bit().constData());
}

void set_pending_error(const char* a, const char* b)
{
    QMutexLocker locker(&error_lock);
    set_pending_error_no_lock(a);
    join_part(pending_record().text, a, b);
}

void set_pending_error(const std::string& a, const std::string& b)
{
    set_pending_error(a.c_str(), b.c_str());
}

void set_pending_error(const char* a, const char* b, const char* c)
{
    QMutexLocker locker(&error_lock);
    set_pending_error_no_lock(a);
    join_part(pending_record().text, a, b);
    join_part(pending_record().text, b, c);
}

bool get_pending_error(std::string* out)
{
    QMutexLocker locker(&error_lock);
    const std::string& text = pending_record().text;
    if (out) {
        *out = text;
    }
    return !text.empty();
}

extern "C" bool error_pending(void)
{
    return pending_flag() != 0;
}

extern "C" void reset_pending_error(void)
{
    QMutexLocker locker(&error_lock);
    set_pending_flag(0);
}

extern "C" void add_error_location_info(const char* location)
{
    if (!location || !*location) {
        return;
    }
    QMutexLocker locker(&error_lock);
    PendingRecord& record = pending_record();
    std::string joined = location;
    // Plain-text errors keep their lines apart; coded errors (with a
    // message) get the location glued to the front as given.
    const bool plain = !record.message || !*record.message;
    if (plain && joined.back() != '\n' && (record.text.empty() || record.text[0] != '\n')) {
        joined += '\n';
    }
    joined += record.text;
    record.text.swap(joined);
}

extern "C" void report_pending_error(void)
{
    if (!pending_flag()) {
        return;
    }
    const char* module;
    int code;
    const char* message;
    std::string text;
    {
        QMutexLocker locker(&error_lock);
        const PendingRecord& record = pending_record();
        module = record.module;
        code = record.code;
        message = record.message;
        text = record.text;
    }
    if (!dispatch_report(error_hook(), kReportError, module, code, message, text.c_str())) {
        print_coded_report("ERROR   ", module, code, message, text.c_str());
    }
    QMutexLocker locker(&error_lock);
    set_pending_flag(0);
    pending_record().text.clear();
}

void report_error(const char* text)
{
    {
        QMutexLocker locker(&error_lock);
        set_pending_error_no_lock(text);
    }
    if (pending_flag()) {
        report_pending_error();
    }
}

void report_error(const std::string& text)
{
    report_error(text.c_str());
}

void report_error(const QString& text)
{
    report_error(text.toLocal8Bit().constData());
}

void report_error(const char* a, const char* b)
{
    set_pending_error(a, b);
    if (pending_flag()) {
        report_pending_error();
    }
}

void report_error(const std::string& a, const std::string& b)
{
    report_error(a.c_str(), b.c_str());
}

void report_warning(const char* text)
{
    if (dispatch_report(warning_hook(), kReportWarning, "", -1, "", text)) {
        return;
    }
    if (*text) {
        std::fprintf(stderr, "WARNING %s", text);
    }
}

void report_warning(const std::string& text)
{
    report_warning(text.c_str());
}

void report_warning(const QString& text)
{
    report_warning(text.toLocal8Bit().constData());
}

void report_warning(const char* a, const char* b)
{
    std::string joined = a;
    join_part(joined, a, b);
    report_warning(joined.c_str());
}

void report_warning(const std::string& a, const std::string& b)
{
    report_warning(a.c_str(), b.c_str());
}
