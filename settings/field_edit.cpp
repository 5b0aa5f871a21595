#include "settings/field_edit.h"

#include "config/channel_info.h"
#include "platform/text_field.h"

#include <QValidator>

#include <algorithm>

namespace marvolen {
namespace {

constexpr int kMostBytes = kTextFieldSize - 1;

// Refuses what would make the text too long. One that is too long already, as bytes in another
// encoding may be when they are shown, can only get shorter.
class FieldValidator final : public QValidator {
public:
    explicit FieldValidator(QLineEdit* itsEdit) : QValidator(itsEdit) {
        connect(itsEdit, &QLineEdit::textChanged, this,
                [this](const QString& text) { size = text.toUtf8().size(); });
    }
    State validate(QString& text, int&) const override {
        return text.toUtf8().size() <= std::max<qsizetype>(kMostBytes, size) ? Acceptable : Invalid;
    }

private:
    qsizetype size = 0;  // of the text before, bytes
};

}  // namespace

CFieldEdit::CFieldEdit(QWidget* parent) : QLineEdit(parent) {
    setValidator(new FieldValidator(this));
}

void CFieldEdit::SetBytes(std::string_view newBytes) {
    bytes = CutText(newBytes.substr(0, newBytes.find('\0')), kMostBytes);
    setText(QString::fromStdString(bytes));
    setCursorPosition(0);
    shown = text();
}

std::string CFieldEdit::Bytes() const {
    return text() == shown ? bytes : text().toStdString();
}

bool CFieldEdit::Fits(std::string_view bytes) {
    return bytes.size() <= kMostBytes;
}

}  // namespace marvolen
