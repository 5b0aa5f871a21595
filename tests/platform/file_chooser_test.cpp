#include "platform/file_chooser.h"

#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace marvolen {
namespace {

// A user who types name over what is proposed (or takes that), presses Enter, says no to a question
// that comes up then, and cancels a chooser that stays.
struct User : QObject {
    explicit User(const QString& name) {
        look.callOnTimeout(this, [this, name] { Look(name); });
        look.start(0);
    }
    void Look(const QString& name) {
        QWidget* const modal = QApplication::activeModalWidget();
        auto* const dialog = qobject_cast<QFileDialog*>(modal);
        if (auto* const question = qobject_cast<QMessageBox*>(modal)) {
            wasAsked = true;
            question->reject();
        } else if (dialog && pressed) {
            dialog->reject();
        } else if (dialog && !typed) {
            typed = true;
            filters = dialog->nameFilters();
            auto* const field = dialog->findChild<QLineEdit*>();
            if (!name.isEmpty()) field->setText(name);
            // A question runs within the key, which this timer must not wait for.
            QTimer::singleShot(0, this, [this, field] {
                QTest::keyClick(field, Qt::Key_Return);
                pressed = true;
            });
        }
    }
    QStringList filters;
    bool wasAsked = false, typed = false, pressed = false;
    QTimer look;
};

TEST(FileChooser, KnowsFiltersExtensionProposalAndWhetherToAsk) {
    const test::TemporaryFolder folder;
    test::WriteWholeFile("there.dbt", "bytes");
    FileChooserOptions options;
    options.filters = QStringLiteral("Pictures|*.jpg;*.jpeg|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("dbt");
    options.initialName = QString::fromStdString(folder.Path() / "chl07");
    struct {
        const char *typed, *chosen;
        bool asks, wasAsked;
    } const cases[] = {{"", "chl07.dbt", true, false},
                       {"gate", "gate.dbt", true, false},
                       {"gate.x", "gate.x", true, false},
                       {"there", nullptr, true, true},
                       {"there", "there.dbt", false, false}};
    for (const auto& each : cases) {
        User user(QString::fromUtf8(each.typed));
        options.asksBeforeOverwriting = each.asks;
        const auto chosen = ChooseFileToSave(nullptr, options);
        ASSERT_EQ(chosen.has_value(), each.chosen != nullptr) << each.typed;
        if (chosen) {
            EXPECT_EQ(*chosen, folder.Path() / each.chosen);
        }
        EXPECT_EQ(user.wasAsked, each.wasAsked);
        EXPECT_EQ(user.filters, (QStringList{QStringLiteral("Pictures(*.jpg *.jpeg)"),
                                             QStringLiteral("All Files (*.*)(*)")}));
    }
    EXPECT_EQ(test::ReadWholeFile("there.dbt"), "bytes");
    for (const char* name : {"there.dbt", "none"}) {
        const User user(QString::fromStdString(folder.Path() / name));
        EXPECT_EQ(ChooseFileToOpen(nullptr, options).has_value(), std::filesystem::exists(name));
    }
}

}  // namespace
}  // namespace marvolen
