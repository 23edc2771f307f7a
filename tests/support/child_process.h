// Runs a piece of code in a forked child and captures what it printed and
// how it ended, so tests can check exact printouts and process exits.
#ifndef TQL70_TESTS_SUPPORT_CHILD_PROCESS_H
#define TQL70_TESTS_SUPPORT_CHILD_PROCESS_H

#include <functional>
#include <string>

namespace tql_test {

struct ChildResult {
    bool exited = false;   // ended through exit (else by a signal)
    int exit_status = -1;  // when exited
    int signal = 0;        // when killed by a signal
    bool timed_out = false;
    std::string out;       // everything written to stdout
    std::string err;       // everything written to stderr
};

// Forks, runs `body` in the child with stdout and stderr captured, and
// ends the child with status 0 if `body` returns. The child is killed
// after `timeout_seconds`.
ChildResult run_in_child(const std::function<void()>& body, int timeout_seconds = 30);

} // namespace tql_test

#endif
