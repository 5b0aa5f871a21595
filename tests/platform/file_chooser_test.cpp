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

using Chooser = std::optional<std::string> (*)(QWidget*, const FileChooserOptions&);

// Has the user see the chooser, type name over what is proposed (or take that), and press Enter;
// the answer to a question that comes up then is "no". A chooser that stays is cancelled.
class User : public QObject {
public:
    QString proposed;
    QStringList filters;
    bool wasAsked = false;

    std::optional<std::string> Choose(Chooser choose, const FileChooserOptions& options,
                                      const QString& name) {
        connect(&look, &QTimer::timeout, this, [this, name] { Look(name); });
        look.start(0);
        const auto chosen = choose(nullptr, options);
        look.stop();
        return chosen;
    }

private:
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
            proposed = field->text();
            if (!name.isEmpty()) field->setText(name);
            // A question runs within the key, which this timer must not wait for.
            QTimer::singleShot(0, this, [this, field] {
                QTest::keyClick(field, Qt::Key_Return);
                pressed = true;
            });
        }
    }
    QTimer look;
    bool typed = false;
    bool pressed = false;
};

TEST(FileChooser, KnowsFiltersExtensionAndProposedName) {
    FileChooserOptions options;
    options.filters = QStringLiteral("Pictures|*.jpg;*.jpeg|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("dbt");
    options.initialName = QStringLiteral("chl07");
    struct {
        const char* typed;
        const char* chosen;
    } const cases[] = {{"", "chl07.dbt"}, {"gate", "gate.dbt"}, {"gate.x", "gate.x"}};
    for (const auto& each : cases) {
        User user;
        const auto chosen = user.Choose(ChooseFileToSave, options, QString::fromUtf8(each.typed));
        EXPECT_EQ(std::filesystem::path(chosen.value_or("/")).filename(), each.chosen);
        EXPECT_EQ(user.proposed, options.initialName);
        EXPECT_EQ(user.filters, (QStringList{QStringLiteral("Pictures(*.jpg *.jpeg)"),
                                             QStringLiteral("All Files (*.*)(*)")}));
    }
}

TEST(FileChooser, AsksBeforeAnExistingFileIsTakenWhereWanted) {
    const test::TemporaryFolder folder;
    test::WriteWholeFile("there.rsf", "bytes");
    FileChooserOptions options;
    options.defaultExtension = QStringLiteral("rsf");
    const QString there = QString::fromStdString(folder.Path() / "there");
    User asked, unasked;
    EXPECT_EQ(asked.Choose(ChooseFileToSave, options, there), std::nullopt);
    EXPECT_TRUE(asked.wasAsked);
    options.asksBeforeOverwriting = false;
    EXPECT_EQ(unasked.Choose(ChooseFileToSave, options, there), folder.Path() / "there.rsf");
    EXPECT_FALSE(unasked.wasAsked);
    EXPECT_EQ(test::ReadWholeFile("there.rsf"), "bytes");
}

TEST(FileChooser, OpensOnlyWhatExists) {
    const test::TemporaryFolder folder;
    test::WriteWholeFile("bare", "bytes");
    for (const auto& path : {folder.Path() / "bare", folder.Path() / "none"}) {
        User user;
        const auto chosen = user.Choose(ChooseFileToOpen, {}, QString::fromStdString(path));
        EXPECT_EQ(chosen.has_value(), std::filesystem::exists(path));
        EXPECT_EQ(chosen.value_or(path), path);
    }
}

}  // namespace
}  // namespace marvolen
