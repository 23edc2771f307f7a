// The trace package behind the DBUG_ macros: the stack of pushed settings,
// each thread's nesting of traced functions, whole-line output and the
// per-function profile written to "dbugmon.out".
#include <tql70/dbug.h>

#include "platform/platform.h"
#include "trace/control.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using tql::trace::Settings;

namespace {

struct ProfileEntry {
    unsigned long long calls = 0;
    long long nanoseconds = 0;
};

// One pushed control string with its output stream and profile.
struct Pushed {
    Settings settings;
    FILE* out = stderr;
    std::map<std::string, ProfileEntry> profile;
    ~Pushed()
    {
        if (out != stderr) {
            std::fclose(out);
        }
    }
};

// The pushed settings, shared by every thread; guarded by lock().
std::mutex& lock()
{
    static std::mutex mutex;
    return mutex;
}
std::vector<std::unique_ptr<Pushed>>& stack()
{
    static std::vector<std::unique_ptr<Pushed>> pushed;
    return pushed;
}

// Each thread's traced functions, innermost last, and the place of the
// DBUG_PRINT being written.
thread_local std::vector<_db_frame_*> frames;
thread_local int print_line = 0;
thread_local const char* print_keyword = "";

long long now_ns()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool listed(const std::vector<std::string>& list, const char* name)
{
    if (list.empty()) {
        return true;
    }
    for (const std::string& entry : list) {
        if (entry == name) {
            return true;
        }
    }
    return false;
}

const char* current_function()
{
    return frames.empty() ? "?func" : frames.back()->function;
}

// Writes one line with the prefixes the settings ask for. Called with the
// lock held, so lines of different threads never mix.
void write_line(const Pushed& top, const char* file, int line, const std::string& text)
{
    const Settings& s = top.settings;
    std::string out;
    if (s.process) {
        out += process_name() + ": ";
    }
    if (s.file) {
        out += std::string(file ? file : "?file") + ": ";
    }
    if (s.line) {
        out += std::to_string(line) + ": ";
    }
    if (s.depth) {
        out += std::to_string(frames.size()) + ": ";
    }
    if (s.trace) {
        for (size_t level = 1; level < frames.size(); ++level) {
            out += "| ";
        }
    }
    out += text;
    out += '\n';
    std::fwrite(out.data(), 1, out.size(), top.out);
    std::fflush(top.out);
}

bool traced(const Settings& s)
{
    return s.trace && (s.max_depth == 0 || static_cast<int>(frames.size()) <= s.max_depth) &&
           listed(s.functions, current_function());
}

void write_profile(const Pushed& pushed)
{
    FILE* out = fopen_utf8("dbugmon.out", "w");
    if (!out) {
        return;
    }
    std::fprintf(out, "%12s %14s  %s\n", "calls", "milliseconds", "function");
    for (const auto& entry : pushed.profile) {
        std::fprintf(out, "%12llu %14.3f  %s\n", entry.second.calls, entry.second.nanoseconds / 1e6,
                     entry.first.c_str());
    }
    std::fclose(out);
}

// At exit the innermost settings that keep a profile write it.
void write_profile_at_exit()
{
    std::lock_guard<std::mutex> guard(lock());
    for (auto it = stack().rbegin(); it != stack().rend(); ++it) {
        if ((*it)->settings.profile) {
            write_profile(**it);
            return;
        }
    }
}

void push_settings(const char* control)
{
    auto pushed = std::make_unique<Pushed>();
    pushed->settings = tql::trace::parse_control(control ? control : "");
    if (!pushed->settings.output.empty()) {
        if (FILE* out = fopen_utf8(pushed->settings.output.c_str(), "w")) {
            pushed->out = out;
        }
    }
    std::lock_guard<std::mutex> guard(lock());
    stack().push_back(std::move(pushed));
    _db_on_ = 1;
}

// The first call of any _db_ function pushes ZQTARVEX_DBUG when it is set
// and then leaves _db_on_ telling whether anything is pushed. _db_on_
// starts non-zero so that the first DBUG_ENTER or DBUG_PRINT gets here.
void start()
{
    static std::once_flag started;
    std::call_once(started, [] {
        // The state is made before the exit hook is registered, so that it
        // is destroyed only after the hook has run.
        lock();
        stack();
        std::atexit(write_profile_at_exit);
        const char* control = std::getenv("ZQTARVEX_DBUG");
        if (control && *control) {
            push_settings(control);
        }
        std::lock_guard<std::mutex> guard(lock());
        _db_on_ = !stack().empty();
    });
}

} // namespace

extern "C" {

int _db_on_ = 1;

void _db_push_(const char* control)
{
    start();
    push_settings(control);
}

void _db_pop_(void)
{
    start();
    std::lock_guard<std::mutex> guard(lock());
    if (stack().empty()) {
        return;
    }
    if (stack().back()->settings.profile) {
        write_profile(*stack().back());
    }
    stack().pop_back();
    _db_on_ = !stack().empty();
}

void _db_enter_(const char* function, const char* file, int line, _db_frame_* frame)
{
    start();
    frame->function = function ? function : "?func";
    frame->file = file;
    frame->entered = 1;
    frames.push_back(frame);
    std::lock_guard<std::mutex> guard(lock());
    if (stack().empty()) {
        return;
    }
    const Pushed& top = *stack().back();
    if (traced(top.settings)) {
        write_line(top, file, line, std::string(">") + frame->function);
    }
    frame->start_ns = top.settings.profile ? now_ns() : 0;
}

void _db_return_(int line, _db_frame_* frame)
{
    // A function that left without its DBUG_RETURN leaves frames above
    // this one; they are dropped with it.
    while (!frames.empty() && frames.back() != frame) {
        frames.pop_back();
    }
    if (frames.empty()) {
        return;
    }
    {
        std::lock_guard<std::mutex> guard(lock());
        if (!stack().empty()) {
            Pushed& top = *stack().back();
            if (top.settings.profile && frame->start_ns) {
                ProfileEntry& entry = top.profile[frame->function];
                ++entry.calls;
                entry.nanoseconds += now_ns() - frame->start_ns;
            }
            if (traced(top.settings)) {
                write_line(top, frame->file, line, std::string("<") + frame->function);
            }
        }
    }
    frames.pop_back();
    frame->entered = 0;
}

int _db_keyword_(const char* keyword)
{
    start();
    std::lock_guard<std::mutex> guard(lock());
    if (stack().empty()) {
        return 0;
    }
    const Settings& s = stack().back()->settings;
    return s.debug && listed(s.functions, current_function()) && listed(s.keywords, keyword ? keyword : "");
}

void _db_pargs_(int line, const char* keyword)
{
    print_line = line;
    print_keyword = keyword ? keyword : "";
}

void _db_doprnt_(const char* format, ...)
{
    if (!format) {
        return;
    }
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int size = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string text(size > 0 ? static_cast<size_t>(size) : 0, '\0');
    if (size > 0) {
        std::vsnprintf(&text[0], text.size() + 1, format, again);
    }
    va_end(again);
    std::lock_guard<std::mutex> guard(lock());
    if (stack().empty()) {
        return;
    }
    const char* file = frames.empty() ? nullptr : frames.back()->file;
    write_line(*stack().back(), file, print_line,
               std::string(current_function()) + ": " + print_keyword + ": " + text);
}

void _db_assert_(const char* file, int line, const char* expression)
{
    std::fprintf(stderr, "%s %s(%d): assertion '%s' failed\n", process_name().c_str(), file ? file : "",
                 line, expression ? expression : "");
    std::fflush(stderr);
    std::abort();
}

} // extern "C"
