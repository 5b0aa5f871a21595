#include "platform/clipboard.h"

#include "platform/clipboard_owner.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace marvolen {

ClipboardRead GetClipboardText(std::string& text, int patience) {
    text.clear();
    if (!ClipboardOwnerAnswers(patience)) return ClipboardRead::CannotOpen;
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    if (!data || !data->hasText()) return ClipboardRead::NoText;
    text = WithCarriageReturns(data->text().toStdString());
    return ClipboardRead::Text;
}

void SetClipboardText(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}

std::string WithCarriageReturns(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    char before = '\0';
    for (const char each : text) {
        if (each == '\n' && before != '\r') result += '\r';
        result += each;
        before = each;
    }
    return result;
}

}  // namespace marvolen
