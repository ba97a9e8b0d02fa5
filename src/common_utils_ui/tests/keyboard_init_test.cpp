#include <common_utils_ui/keyboard/keyboard_init.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QPointer>

namespace {

using vdi::common_utils_ui::KeyboardInit;
using vdi::common_utils_ui::xkb_helper::IXkbHelper;
using ::testing::Return;

class MockXkbHelper : public IXkbHelper {
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
        if (event->type() == QEvent::FocusIn) {
            ++focusIns;
        }
        return QObject::event(event);
    }
    int focusIns = 0;
};

void SendFocusIn(QObject* target) {
    QFocusEvent event(QEvent::FocusIn);
    QCoreApplication::sendEvent(target, &event);
}

class KeyboardInitTest : public ::testing::Test {
protected:
    KeyboardInit* MakeFilter() {
        auto helper = std::make_unique<MockXkbHelper>();
        m_helper = helper.get();
        return new KeyboardInit(std::move(helper), &m_app);
    }

    int m_argc = 0;
    QCoreApplication m_app{m_argc, nullptr};
    MockXkbHelper* m_helper = nullptr;
    Receiver m_receiver;
};

TEST_F(KeyboardInitTest, FailedAttemptKeepsTheFilterAndALaterSuccessRemovesIt) {
    QPointer<KeyboardInit> filter = MakeFilter();
    EXPECT_CALL(*m_helper, TryInitKeyboardInFocus()).WillOnce(Return(false)).WillOnce(Return(true));

    SendFocusIn(&m_receiver);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_FALSE(filter.isNull());

    SendFocusIn(&m_receiver);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(filter.isNull());
    EXPECT_EQ(m_receiver.focusIns, 2);
}

TEST_F(KeyboardInitTest, OtherEventsDoNotReachTheHelper) {
    QPointer<KeyboardInit> filter = MakeFilter();
    EXPECT_CALL(*m_helper, TryInitKeyboardInFocus()).Times(0);
    QFocusEvent focusOut(QEvent::FocusOut);
    QCoreApplication::sendEvent(&m_receiver, &focusOut);
    QEvent other(QEvent::User);
    QCoreApplication::sendEvent(&m_receiver, &other);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(filter.isNull());
}

TEST_F(KeyboardInitTest, DestroyedFilterNoLongerSeesEvents) {
    KeyboardInit* filter = MakeFilter();
    EXPECT_CALL(*m_helper, TryInitKeyboardInFocus()).Times(0);
    delete filter;
    SendFocusIn(&m_receiver);
    EXPECT_EQ(m_receiver.focusIns, 1);
}

TEST_F(KeyboardInitTest, CreateWithoutParentThrows) {
    EXPECT_ANY_THROW(KeyboardInit::Create(nullptr));
}

TEST_F(KeyboardInitTest, CreateMakesAChildOfTheParent) {
    QObject parent;
    KeyboardInit::Create(&parent);
    EXPECT_EQ(parent.findChildren<KeyboardInit*>().size(), 1);
}

}  // namespace
