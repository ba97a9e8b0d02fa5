#include <ui_kit/models/i_menu_model.h>
#include <ui_kit/models/menu_item.h>
#include <ui_kit/models/menu_model.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <memory>

namespace vdi::uikit::models {
namespace {

constexpr int kIdRole = 0x101;
constexpr int kWidgetRole = 0x102;
constexpr int kUrlRole = 0x103;

std::shared_ptr<MenuItem> Item(const char* name, std::uint64_t id, QObject* widget = nullptr) {
    const QString text = QString::fromUtf8(name);
    return std::make_shared<MenuItem>(text, id, QUrl("qrc:/pages/" + text + ".qml"), widget);
}

TEST(MenuModel, RolesNameEachFieldAndOtherRolesOrRowsAreInvalid) {
    const std::unique_ptr<IMenuModel> created = CreateMenuModel();
    QAbstractListModel& model = *created->AsQAbstractListModel();
    const auto roles = model.roleNames();
    EXPECT_EQ(roles.size(), 4);
    EXPECT_EQ(roles.value(Qt::DisplayRole), "name");
    EXPECT_EQ(roles.value(kIdRole), "id");
    EXPECT_EQ(roles.value(kWidgetRole), "widgetFromModel");
    EXPECT_EQ(roles.value(kUrlRole), "componentUrlFromModel");

    QObject widget;
    created->AddMenuItem(Item("network", 7, &widget));
    created->AddMenuItem(nullptr);
    const QModelIndex index = model.index(0, 0);
    EXPECT_EQ(model.data(index, Qt::DisplayRole).toString(), "network");
    EXPECT_EQ(model.data(index, kIdRole).metaType(), QMetaType::fromType<int>());
    EXPECT_EQ(model.data(index, kIdRole).toInt(), 7);
    EXPECT_EQ(model.data(index, kWidgetRole).value<QObject*>(), &widget);
    EXPECT_EQ(model.data(index, kUrlRole).toUrl(), QUrl("qrc:/pages/network.qml"));
    EXPECT_EQ(model.rowCount(), 2);
    for (const int role : {int(Qt::DisplayRole), kIdRole, kWidgetRole, kUrlRole}) {
        EXPECT_FALSE(model.data(model.index(1, 0), role).isValid()) << "null item, role " << role;
    }
    EXPECT_FALSE(model.data(index, Qt::UserRole).isValid());
    EXPECT_FALSE(model.data(index, 0x104).isValid());
    EXPECT_FALSE(model.data(model.index(5, 0), kIdRole).isValid());
}

TEST(MenuModel, IdRoleKeepsTheLow32BitsWhileLookupUsesAll64AndFindsTheFirstDuplicate) {
    MenuModel model;
    EXPECT_EQ(model.GetItemById(0), nullptr);
    const auto wide = Item("wide", 0x1'8000'0001ULL);
    const auto first = Item("first", 42);
    model.AddMenuItem(wide);
    model.AddMenuItem(Item("high-bit", 0xFFFF'FFFFULL));
    model.AddMenuItem(first);
    model.AddMenuItem(Item("second", 42));

    EXPECT_EQ(model.data(model.index(0, 0), kIdRole).toInt(), -2147483647);
    EXPECT_EQ(model.data(model.index(1, 0), kIdRole).toInt(), -1);
    EXPECT_EQ(model.GetItemById(0x1'8000'0001ULL), wide);
    EXPECT_EQ(model.GetItemById(0x8000'0001UL), nullptr);
    EXPECT_EQ(model.ItemCount(), 4u);
    EXPECT_EQ(model.GetItemById(42), first);
    EXPECT_EQ(model.data(model.index(3, 0), Qt::DisplayRole).toString(), "second");
}

TEST(MenuModel, EachAddEmitsOneRowsInsertedForTheNewLastRowAlsoFromTheMetaObject) {
    MenuModel model;
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    for (int i = 0; i < 3; ++i) {
        if (i == 2) {
            ASSERT_TRUE(QMetaObject::invokeMethod(
                &model, "AddMenuItem", Q_ARG(std::shared_ptr<vdi::uikit::models::MenuItem>, Item("x", 2))));
        } else {
            model.AddMenuItem(Item("page", static_cast<std::uint64_t>(i)));
        }
        ASSERT_EQ(inserted.count(), i + 1);
        EXPECT_FALSE(inserted.last().at(0).value<QModelIndex>().isValid());
        EXPECT_EQ(inserted.last().at(1).toInt(), i);
        EXPECT_EQ(inserted.last().at(2).toInt(), i);
    }
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(model.GetItemById(2)->Name(), "x");
}

}  // namespace
}  // namespace vdi::uikit::models
