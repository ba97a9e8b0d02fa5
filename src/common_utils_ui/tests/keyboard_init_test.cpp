#include <common_utils_ui/keyboard/keyboard_init.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

namespace {

using ::testing::Return;
using vdi::common_utils_ui::KeyboardInit;

class MockXkbHelper : public vdi::common_utils_ui::xkb_helper::IXkbHelper {
public:
    MOCK_METHOD(bool, IsCapsLockActive, (), (const, override));
    MOCK_METHOD(bool, IsNumLockActive, (), (const, override));
    MOCK_METHOD(bool, IsScrollLockActive, (), (const, override));
    MOCK_METHOD(std::string, ConvertModeNamesToString, (), (const, override));
    MOCK_METHOD(bool, TryInitKeyboardInFocus, (), (const, override));
};

// Counts the focus-in events that reach it, to prove the filter swallows none.
class Receiver : public QObject {
public:
    bool event(QEvent* event) override {
        focusIns += event->type() == QEvent::FocusIn ? 1 : 0;
        return QObject::event(event);
    }
    int focusIns = 0;
};

class KeyboardInitTest : public ::testing::Test {
protected:
    // Sends `type` to the receiver and runs the deferred deletions it caused.
    void Send(QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&m_receiver, &event);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    int m_argc = 0;
    QCoreApplication m_app{m_argc, nullptr};
    MockXkbHelper* m_helper = new MockXkbHelper;
    QPointer<KeyboardInit> m_filter = new KeyboardInit(std::unique_ptr<MockXkbHelper>(m_helper), &m_app);
    Receiver m_receiver;
};

TEST_F(KeyboardInitTest, FocusInKeepsTheFilterUntilTheHelperSucceedsOtherEventsAreIgnored) {
    EXPECT_CALL(*m_helper, TryInitKeyboardInFocus()).WillOnce(Return(false)).WillOnce(Return(true));
    Send(QEvent::FocusOut);
    Send(QEvent::User);
    Send(QEvent::FocusIn);
    ASSERT_FALSE(m_filter.isNull()) << "a failed attempt keeps the filter";
    Send(QEvent::FocusIn);
    EXPECT_TRUE(m_filter.isNull()) << "a successful attempt removes the filter";
    Send(QEvent::FocusIn);
    EXPECT_EQ(m_receiver.focusIns, 3);
}

TEST_F(KeyboardInitTest, CreateMakesAChildOfTheParentAndNeedsOne) {
    EXPECT_ANY_THROW(KeyboardInit::Create(nullptr));
    QObject parent;
    KeyboardInit::Create(&parent);
    EXPECT_EQ(parent.findChildren<KeyboardInit*>().size(), 1);
}

}  // namespace
