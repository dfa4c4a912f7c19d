#include "tests/support/QtTest.h"

#include <QApplication>

#include <cstdio>
#include <vector>

namespace quill::testing {

struct TWarnings {
    static inline std::vector<TExpectQtWarning*> Expected;

    static bool IsExpected(const std::string& Text) {
        // What the offscreen platform says about windows that have a smallest size or are raised.
        if (Text == "This plugin does not support propagateSizeHints()") return true;
        if (Text == "This plugin does not support raise()") return true;
        for (TExpectQtWarning* Expectation : Expected) {
            if (Text.find(Expectation->FText) == std::string::npos) continue;
            ++Expectation->FCount;
            return true;
        }
        return false;
    }

    static void Handle(QtMsgType Type, const QMessageLogContext&, const QString& Message) {
        const std::string Text = Message.toStdString();
        if (Type == QtDebugMsg || Type == QtInfoMsg) {
            std::fprintf(stderr, "%s\n", Text.c_str());
        } else if (!IsExpected(Text)) {
            ADD_FAILURE() << "Qt warns: " << Text;
        }
    }
};

TExpectQtWarning::TExpectQtWarning(std::string Text) : FText(std::move(Text)) {
    TWarnings::Expected.push_back(this);
}

TExpectQtWarning::~TExpectQtWarning() {
    std::erase(TWarnings::Expected, this);
    EXPECT_GT(FCount, 0) << "No Qt warning with the text: " << FText;
}

} // namespace quill::testing

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("QT_QPA_PLATFORM", QStringLiteral("offscreen")).toUtf8());
    ::testing::InitGoogleTest(&argc, argv);
    QApplication Application(argc, argv);
    // The platform's own greetings (a missing runtime folder, for example) are no fault of a test.
    qInstallMessageHandler(quill::testing::TWarnings::Handle);
    return RUN_ALL_TESTS();
}
