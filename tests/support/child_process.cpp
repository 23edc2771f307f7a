// Fork-and-capture helper for tests of printouts and process exits.
#include "support/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef TQL70_TEST_COVERAGE
// The coverage build's counters are written at exit; a child that leaves
// through _exit or dies of abort() would lose what its body ran.
extern "C" void __gcov_dump(void);
#endif

namespace tql_test {

namespace {

#ifdef TQL70_TEST_COVERAGE
rlimit file_size_limit_at_fork;

// A body may have lowered the file-size limit (tests of failed saves do):
// counters cut short would spoil every later run, so they are written only
// under the limit the child started with.
void dump_coverage()
{
    if (setrlimit(RLIMIT_FSIZE, &file_size_limit_at_fork) == 0) {
        __gcov_dump();
    }
}

void dump_coverage_and_abort(int signal_number)
{
    dump_coverage();
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}
#endif

void drain(int fd, std::string& into, bool& open)
{
    char buffer[4096];
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n > 0) {
        into.append(buffer, static_cast<size_t>(n));
    } else if (n == 0 || errno != EINTR) {
        open = false;
    }
}

} // namespace

ChildResult run_in_child(const std::function<void()>& body, int timeout_seconds)
{
    int out_pipe[2];
    int err_pipe[2];
    if (pipe(out_pipe) != 0 || pipe(err_pipe) != 0) {
        std::perror("pipe");
        std::abort();
    }
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid < 0) {
        std::perror("fork");
        std::abort();
    }
    if (pid == 0) {
        dup2(out_pipe[1], STDOUT_FILENO);
        dup2(err_pipe[1], STDERR_FILENO);
        close(out_pipe[0]);
        close(err_pipe[0]);
        close(out_pipe[1]);
        close(err_pipe[1]);
#ifdef TQL70_TEST_COVERAGE
        getrlimit(RLIMIT_FSIZE, &file_size_limit_at_fork);
        std::signal(SIGABRT, dump_coverage_and_abort);
#endif
        body();
        std::fflush(stdout);
        std::fflush(stderr);
#ifdef TQL70_TEST_COVERAGE
        dump_coverage();
#endif
        _exit(0);
    }
    close(out_pipe[1]);
    close(err_pipe[1]);

    ChildResult result;
    bool out_open = true;
    bool err_open = true;
    const time_t deadline = time(nullptr) + timeout_seconds;
    while (out_open || err_open) {
        pollfd fds[2] = {{out_pipe[0], POLLIN, 0}, {err_pipe[0], POLLIN, 0}};
        const int ready = poll(fds, 2, 100);
        if (ready > 0) {
            if (out_open && fds[0].revents) drain(out_pipe[0], result.out, out_open);
            if (err_open && fds[1].revents) drain(err_pipe[0], result.err, err_open);
        }
        if (time(nullptr) > deadline) {
            kill(pid, SIGKILL);
            result.timed_out = true;
            break;
        }
    }
    close(out_pipe[0]);
    close(err_pipe[0]);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) {
        result.exited = true;
        result.exit_status = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = WTERMSIG(status);
    }
    return result;
}

} // namespace tql_test
