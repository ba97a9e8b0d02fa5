#include <ui_kit/models/i_menu_model.h>
#include <ui_kit/models/menu_item.h>
#include <ui_kit/models/menu_model.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMetaMethod>
#include <QSignalSpy>

#include <memory>

namespace vdi::uikit::models {
namespace {

constexpr int kIdRole = 0x101;
constexpr int kWidgetRole = 0x102;
constexpr int kUrlRole = 0x103;

std::shared_ptr<MenuItem> Item(const char* name, std::uint64_t id, QObject* widget = nullptr) {
    return std::make_shared<MenuItem>(QString::fromUtf8(name), id,
                                      QUrl(QStringLiteral("qrc:/pages/%1.qml").arg(QString::fromUtf8(name))),
                                      widget);
}

TEST(MenuModel, RoleNamesAreTheFourNamesQmlDelegatesUse) {
    MenuModel model;
    const auto roles = model.roleNames();
    EXPECT_EQ(roles.size(), 4);
    EXPECT_EQ(roles.value(Qt::DisplayRole), "name");
    EXPECT_EQ(roles.value(kIdRole), "id");
    EXPECT_EQ(roles.value(kWidgetRole), "widgetFromModel");
    EXPECT_EQ(roles.value(kUrlRole), "componentUrlFromModel");
}

TEST(MenuModel, DataGivesEachFieldUnderItsRole) {
    MenuModel model;
    QObject widget;
    model.AddMenuItem(Item("network", 7, &widget));
    const QModelIndex index = model.index(0, 0);

    EXPECT_EQ(model.data(index, Qt::DisplayRole).toString(), "network");
    const QVariant id = model.data(index, kIdRole);
    EXPECT_EQ(id.metaType(), QMetaType::fromType<int>());
    EXPECT_EQ(id.toInt(), 7);
    EXPECT_EQ(model.data(index, kWidgetRole).value<QObject*>(), &widget);
    EXPECT_EQ(model.data(index, kUrlRole).toUrl(), QUrl("qrc:/pages/network.qml"));
}

TEST(MenuModel, UnknownRolesAndInvalidIndexesGiveInvalidVariants) {
    MenuModel model;
    model.AddMenuItem(Item("display", 1));
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::UserRole).isValid());
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::DecorationRole).isValid());
    EXPECT_FALSE(model.data(model.index(0, 0), 0x104).isValid());
    EXPECT_FALSE(model.data(QModelIndex(), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data(model.index(5, 0), kIdRole).isValid());
}

TEST(MenuModel, NullItemIsCountedButReadsAsInvalidForEveryRole) {
    MenuModel model;
    model.AddMenuItem(nullptr);
    model.AddMenuItem(Item("sound", 0));
    EXPECT_EQ(model.ItemCount(), 2u);
    EXPECT_EQ(model.rowCount(), 2);
    for (const int role : {int(Qt::DisplayRole), kIdRole, kWidgetRole, kUrlRole}) {
        EXPECT_FALSE(model.data(model.index(0, 0), role).isValid()) << role;
    }
    EXPECT_EQ(model.GetItemById(0), model.GetItemById(0));
    ASSERT_NE(model.GetItemById(0), nullptr);
    EXPECT_EQ(model.GetItemById(0)->Name(), "sound");
}

TEST(MenuModel, IdRoleKeepsOnlyTheLow32BitsWhileLookupUsesAll64) {
    MenuModel model;
    constexpr std::uint64_t kWideId = 0x1'8000'0001ULL;
    model.AddMenuItem(Item("wide", kWideId));
    model.AddMenuItem(Item("high-bit", 0xFFFF'FFFFULL));

    EXPECT_EQ(model.data(model.index(0, 0), kIdRole).toInt(), static_cast<int>(0x8000'0001u));
    EXPECT_EQ(model.data(model.index(0, 0), kIdRole).toInt(), -2147483647);
    EXPECT_EQ(model.data(model.index(1, 0), kIdRole).toInt(), -1);

    const auto found = model.GetItemById(kWideId);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->Name(), "wide");
    EXPECT_EQ(model.GetItemById(0x8000'0001UL), nullptr);
}

TEST(MenuModel, GetItemByIdOnEmptyModelGivesEmptyPointer) {
    MenuModel model;
    EXPECT_EQ(model.GetItemById(0), nullptr);
    EXPECT_EQ(model.GetItemById(1), nullptr);
    EXPECT_EQ(model.ItemCount(), 0u);
}

TEST(MenuModel, DuplicateIdsAreBothKeptAndLookupReturnsTheEarlierOne) {
    MenuModel model;
    const auto first = Item("first", 42);
    const auto second = Item("second", 42);
    model.AddMenuItem(first);
    model.AddMenuItem(second);
    EXPECT_EQ(model.ItemCount(), 2u);
    EXPECT_EQ(model.GetItemById(42), first);
    EXPECT_EQ(model.data(model.index(1, 0), Qt::DisplayRole).toString(), "second");
}

TEST(MenuModel, EachAddEmitsOneRowsInsertedForTheNewLastRow) {
    MenuModel model;
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    for (int i = 0; i < 3; ++i) {
        model.AddMenuItem(Item("page", static_cast<std::uint64_t>(i)));
        ASSERT_EQ(inserted.count(), i + 1);
        const auto arguments = inserted.last();
        EXPECT_FALSE(arguments.at(0).value<QModelIndex>().isValid());
        EXPECT_EQ(arguments.at(1).toInt(), i);
        EXPECT_EQ(arguments.at(2).toInt(), i);
    }
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(model.rowCount(), 3);
}

TEST(MenuModel, AddMenuItemIsTheOnlyMethodOfItsOwnMetaObject) {
    const QMetaObject& meta = MenuModel::staticMetaObject;
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 0);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    EXPECT_EQ(QByteArray(method.name()), "AddMenuItem");
    EXPECT_EQ(method.methodType(), QMetaMethod::Slot);

    MenuModel model;
    ASSERT_TRUE(QMetaObject::invokeMethod(
        &model, "AddMenuItem", Q_ARG(std::shared_ptr<vdi::uikit::models::MenuItem>, Item("invoked", 9))));
    EXPECT_EQ(model.ItemCount(), 1u);
    EXPECT_EQ(model.GetItemById(9)->Name(), "invoked");
}

TEST(MenuModel, InterfaceFactoryGivesTheModelItself) {
    const std::unique_ptr<IMenuModel> model = CreateMenuModel();
    ASSERT_NE(model, nullptr);
    QAbstractListModel* listModel = model->AsQAbstractListModel();
    ASSERT_NE(listModel, nullptr);
    EXPECT_EQ(listModel->parent(), nullptr);
    model->AddMenuItem(Item("about", 3));
    EXPECT_EQ(listModel->rowCount(), 1);
    EXPECT_EQ(listModel->data(listModel->index(0, 0), Qt::DisplayRole).toString(), "about");
    EXPECT_EQ(listModel->roleNames().value(kUrlRole), "componentUrlFromModel");
}

}  // namespace
}  // namespace vdi::uikit::models
