// The settings store that stands in for the registry: INI files in the XDG
// configuration directories, organisation "zqtarvex", application
// "environment", user file first, then the system files. The locations are
// resolved at each lookup, so a change of XDG_CONFIG_HOME or XDG_CONFIG_DIRS
// is seen by the next lookup.
#include "platform/platform.h"

#include <QSettings>
#include <QString>
#include <QStringList>

#include <cstdlib>

bool qtCoreSettingsAreInitialized = false;

namespace {

const char kStoreRelativePath[] = "/zqtarvex/environment.ini";

QString env_or(const char* variable, const char* fallback)
{
    const char* value = std::getenv(variable);
    return QString::fromUtf8(value && *value ? value : fallback);
}

// The store files in the order they are consulted.
QStringList store_files()
{
    QString user_dir;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) {
        user_dir = QString::fromUtf8(xdg);
    } else {
        user_dir = env_or("HOME", "") + QStringLiteral("/.config");
    }
    QStringList files{user_dir + QLatin1String(kStoreRelativePath)};
    const QStringList system_dirs =
        env_or("XDG_CONFIG_DIRS", "/etc/xdg").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    for (const QString& dir : system_dirs) {
        files << dir + QLatin1String(kStoreRelativePath);
    }
    return files;
}

bool lookup_store(const QString& name, QString& value)
{
    for (const QString& file : store_files()) {
        QSettings store(file, QSettings::IniFormat);
        const QVariant found = store.value(name);
        if (found.isValid()) {
            // An unquoted value with commas reads back as a list of
            // strings; the variable's value is the whole text.
            value = found.metaType().id() == QMetaType::QStringList
                        ? found.toStringList().join(QLatin1Char(','))
                        : found.toString();
            return true;
        }
    }
    return false;
}

} // namespace

// Nothing needs setting up once for the store on Linux: QSettings works
// without an application object and the locations are resolved per lookup.
// The flag records that the check callers make has been done.
void initialize_qt_core_settings()
{
    qtCoreSettingsAreInitialized = true;
}

void ensure_qt_core_settings()
{
    if (!qtCoreSettingsAreInitialized) {
        initialize_qt_core_settings();
    }
}

bool getenv_check_registry_qt(const QString& name, QString& value)
{
    if (name.isEmpty()) {
        return false;
    }
    const QByteArray key = name.toUtf8();
    if (const char* found = std::getenv(key.constData())) {
        value = QString::fromUtf8(found);
        return true;
    }
    // A name the INI format would read as a group path or escape is not a
    // variable name; it is never in the store.
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\'))) {
        return false;
    }
    return lookup_store(name, value);
}
