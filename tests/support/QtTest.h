// What test programs with Qt share. Their main function (QtTestMain.cpp) uses the offscreen platform unless
// QT_QPA_PLATFORM says otherwise, and fails a test that causes a Qt warning which it did not announce.
#pragma once

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace quill::testing {

// Allows warnings that contain Text, until the end of its scope; fails the test when there was none.
class TExpectQtWarning {
public:
    explicit TExpectQtWarning(std::string Text);
    ~TExpectQtWarning();
    TExpectQtWarning(const TExpectQtWarning&) = delete;
    TExpectQtWarning& operator=(const TExpectQtWarning&) = delete;

private:
    friend struct TWarnings;
    std::string FText;
    int FCount = 0;
};

} // namespace quill::testing
