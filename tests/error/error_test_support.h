// Shared by the error-reporting tests: every test starts and ends with no
// pending error, an empty pending text and no hooks.
#ifndef TQL70_TESTS_ERROR_ERROR_TEST_SUPPORT_H
#define TQL70_TESTS_ERROR_ERROR_TEST_SUPPORT_H

#include <tql70/aerr.h>
#include <tql70/error.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <string>

namespace tql_test {

inline std::string pending_text()
{
    std::string text;
    get_pending_error(&text);
    return text;
}

class ErrorStateTest : public ::testing::Test {
protected:
    void SetUp() override { clear(); }
    void TearDown() override { clear(); }
    // Tests with state of their own extend this.
    virtual void clear()
    {
        aerr_set_error_function(nullptr);
        aerr_set_warning_function(nullptr);
        aerr_set_message_function(nullptr);
        aerr_set_exit_function(nullptr);
        set_pending_error("");
        reset_pending_error();
    }
};

} // namespace tql_test

#endif
