// Process variables read through the settings-store fallback: tql_getenv
// and its QString forms.
#include <tql70/process_env.h>

#include "platform/platform.h"

#include <QString>

#include <string>

namespace {

// The process-wide result buffer of tql_getenv. It is rewritten in place
// while the value fits, so an earlier result pointer shows the newest
// value; it only moves when a longer value needs more room.
std::string& result_buffer()
{
    static std::string buffer = [] {
        std::string initial;
        initial.reserve(1024);
        return initial;
    }();
    return buffer;
}

} // namespace

extern "C" char* tql_getenv(const char* name)
{
    if (!name) {
        return nullptr;
    }
    ensure_qt_core_settings();
    QString value;
    if (!getenv_check_registry_qt(QString::fromLatin1(name), value)) {
        return nullptr;
    }
    std::string& buffer = result_buffer();
    buffer.assign(value.toUtf8().constData());
    return &buffer[0];
}

bool getenv_and_registry_qt(const char* name, QString& value)
{
    if (!name) {
        return false;
    }
    ensure_qt_core_settings();
    return getenv_check_registry_qt(QString::fromLatin1(name), value);
}

bool getenv_and_registry_qt_2(const QString& name, QString& value)
{
    ensure_qt_core_settings();
    return getenv_check_registry_qt(name, value);
}
