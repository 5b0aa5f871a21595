#pragma once

// CFieldEdit: an edit box over a fixed-size text field of a record.
//
// It shows bytes that may not be text: as long as what it shows isn't edited, it stands for the
// very bytes it was given. Edited, it stands for its text in UTF-8, which never gets longer than a
// field holds. Interface thread only.

#include <QLineEdit>

#include <string>
#include <string_view>

namespace marvolen {

class CFieldEdit final : public QLineEdit {
    Q_OBJECT

public:
    explicit CFieldEdit(QWidget* parent);

    // Those before the first NUL, as many as a field holds; none is left of a character cut in two.
    void SetBytes(std::string_view newBytes);
    std::string Bytes() const;

    // Whether a field holds this text whole, its NUL included.
    static bool Fits(std::string_view bytes);

private:
    std::string bytes;  // given by SetBytes
    QString shown;      // for them
};

}  // namespace marvolen
