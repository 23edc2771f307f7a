/* Pending error and reporting: the one pending error of the process, the
 * reports built on it, and the ErrorHandler object through which an
 * application takes errors and warnings over. */
#ifndef TQL70_ERROR_H
#define TQL70_ERROR_H

#include "export.h"

TQL70_BEGIN_DECLS

/* 1 while an error is pending, 0 otherwise. */
TQL70_API extern int AerrFlag;

/* Hook for errors, warnings or messages: (module, code, message, text).
 * A non-zero result means the report was dealt with and nothing is printed. */
typedef int (*LegacyReportFunction)(char* module, int code, char* message, char* text);

/* Makes `text` the pending error (module "", code -1, message "") without
 * taking the error lock; for callers that already hold it. */
TQL70_API void set_pending_error_no_lock(const char* text);

/* Whether an error is pending (AerrFlag); takes no lock. */
TQL70_API TQL70_BOOL error_pending(void);

/* Ends the pending error without reporting it. The text stays readable
 * through get_pending_error until a new error replaces it. */
TQL70_API void reset_pending_error(void);

/* Hands the pending error to the current handler's (or the global) legacy
 * error function, else to the current handler; prints
 * "ERROR   %6s%04d[ %s]: %s\n" to stderr when neither takes it. Afterwards
 * no error is pending and the text is empty. Does nothing when no error is
 * pending. */
TQL70_API void report_pending_error(void);

/* Prepends a location line to the pending text (a line feed is put between
 * them for plain-text errors unless one is already there). An empty
 * location does nothing. Works whether or not an error is pending. */
TQL70_API void add_error_location_info(const char* location);

TQL70_END_DECLS

#ifdef __cplusplus
#include <string>

class QString;

/* Makes `text` the pending error under the error lock (module "", code -1,
 * message ""). The QString form converts with toLocal8Bit. */
TQL70_API void set_pending_error(const char* text);
/* Same as set_pending_error(const char*). */
TQL70_API void set_pending_error(const std::string& text);
/* Same as set_pending_error(const char*). */
TQL70_API void set_pending_error(const QString& text);

/* Sets `a`, then appends `b` by the joining rule: a line feed goes between
 * the two unless the text is empty, already ends in a line feed, or `b`
 * starts with one. An empty `b` therefore still adds a line feed. */
TQL70_API void set_pending_error(const char* a, const char* b);
/* Same as set_pending_error(const char*, const char*). */
TQL70_API void set_pending_error(const std::string& a, const std::string& b);
/* Sets `a`, then appends `b` and `c` by the joining rule. */
TQL70_API void set_pending_error(const char* a, const char* b, const char* c);

/* Copies the pending text into *out (unless out is null) and returns
 * whether the text is non-empty. It reports the text, not AerrFlag: after
 * reset_pending_error the old text is still returned. */
TQL70_API bool get_pending_error(std::string* out);

/* Sets `text` as the pending error and reports it at once. */
TQL70_API void report_error(const char* text);
/* Same as report_error(const char*). */
TQL70_API void report_error(const std::string& text);
/* Same as report_error(const char*). */
TQL70_API void report_error(const QString& text);
/* Same as set_pending_error(a, b) followed by report_pending_error(). */
TQL70_API void report_error(const char* a, const char* b);
/* Same as report_error(const char*, const char*). */
TQL70_API void report_error(const std::string& a, const std::string& b);

/* Routes a warning to the legacy warning function, else the current
 * handler, else prints "WARNING %s" (no line feed added; empty text prints
 * nothing). The pending error is not touched. */
TQL70_API void report_warning(const char* text);
/* Same as report_warning(const char*). */
TQL70_API void report_warning(const std::string& text);
/* Same as report_warning(const char*). */
TQL70_API void report_warning(const QString& text);
/* Joins `a` and `b` by the joining rule, then report_warning. */
TQL70_API void report_warning(const char* a, const char* b);
/* Same as report_warning(const char*, const char*). */
TQL70_API void report_warning(const std::string& a, const std::string& b);

/* An application derives from ErrorHandler to take errors and warnings
 * over. Constructing one makes it the current handler of the process;
 * destroying it makes the previous one current again, so handlers must be
 * destroyed in the reverse order of their construction. Handlers are
 * created and destroyed by one thread while no report is in progress. */
class TQL70_API ErrorHandler {
public:
    ErrorHandler();

    /* Displays a report (kind 1 error, 2 warning); true when dealt with. */
    virtual bool handle_report(int kind, const char* module, int code,
                               const char* message, const char* text) = 0;

    /* The legacy hooks of this handler; while it is current they take
     * reports before handle_report is asked. */
    void set_legacy_error_function(LegacyReportFunction fn);
    void set_legacy_warning_function(LegacyReportFunction fn);
    LegacyReportFunction get_legacy_error_function() const;
    LegacyReportFunction get_legacy_warning_function() const;

    /* Clears AerrFlag (without the lock) and calls handle_report(1, "", -1,
     * "", text) on this object; the pending text is left as it is. */
    void report_error(const char* text);
    /* Same as report_error(const char*). */
    void report_error(const std::string& text);
    /* Same as report_error(const char*), converting with toLocal8Bit. */
    void report_error(const QString& text);

    /* Calls handle_report(2, "", -1, "", text) on this object. */
    void report_warning(const char* text);
    /* Same as report_warning(const char*). */
    void report_warning(const std::string& text);
    /* Same as report_warning(const char*), converting with toLocal8Bit. */
    void report_warning(const QString& text);

protected:
    /* Not virtual: a handler is never deleted through this class. */
    ~ErrorHandler();

private:
    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;

    ErrorHandler* previous;
    LegacyReportFunction legacy_error_function;
    LegacyReportFunction legacy_warning_function;
};

#endif /* __cplusplus */

#endif /* TQL70_ERROR_H */
