// SPDX-License-Identifier: Apache-2.0
#include <QFocusEvent>
#include <QMouseEvent>
#include <QValidator>

#include "framework/editors/Editors.h"

namespace {

// Digits of other scripts count as digits for Qt's masks, but not for a bank's.
class TPlainDigits final : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString &text, int &) const override
    {
        const bool foreign =
            std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isNumber() && (c < u'0' || c > u'9'); });
        return foreign ? Invalid : Acceptable;
    }
};

char16_t QtMaskCharacter(char16_t c)
{
    switch (c) {
    case u'0':
        return u'9';
    case u'9':
        return u'0';
    case u'#':
        return u'#';
    case u'L':
        return u'A';
    case u'l':
        return u'a';
    case u'A':
        return u'N';
    case u'a':
        return u'n';
    case u'C':
        return u'X';
    case u'c':
        return u'x';
    default:
        return 0;
    }
}

} // namespace

TqsMaskEdit::TqsMaskEdit(QWidget *parent)
    : QLineEdit(parent)
    , blank_(u'_')
{
    setValidator(new TPlainDigits(this));
    ShowReadable(this);
    connect(this, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (setting_)
            return;
        if (text.isEmpty() && inputMask() != qtMask_)
            ApplyMask();
        Tell();
    });
}

void TqsMaskEdit::SetEditMask(const QString &mask)
{
    const QString value = Value();
    const QStringList parts = mask.split(u';');
    const QString picture = parts[0];
    blank_ = parts.size() >= 3 && parts[2].size() == 1 ? parts[2][0] : QChar(u'_');
    qtMask_.clear();
    open_.clear();
    for (qsizetype i = 0; i < picture.size(); ++i) {
        const QChar c = picture[i];
        if (c == u'>' || c == u'<') {
            qtMask_ += c;
        } else if (const char16_t qt = QtMaskCharacter(c.unicode())) {
            qtMask_ += QChar(qt);
            open_ += true;
        } else {
            const QChar literal = c == u'\\' && i + 1 < picture.size() ? picture[++i] : c;
            qtMask_ += u'\\';
            qtMask_ += literal;
            open_ += false;
        }
    }
    if (!qtMask_.isEmpty()) {
        qtMask_ += u';';
        qtMask_ += blank_;
    }
    SetValue(value);
}

void TqsMaskEdit::ApplyMask()
{
    setInputMask(qtMask_);
    StandOnFirstOpen();
}

QString TqsMaskEdit::Value() const
{
    if (inputMask().isEmpty())
        return text().trimmed();
    const QString shown = displayText();
    for (qsizetype i = 0; i < shown.size() && i < open_.size(); ++i) {
        if (open_[i] && shown[i] != blank_ && !shown[i].isSpace())
            return text().trimmed();
    }
    return {};
}

void TqsMaskEdit::SetValue(const QString &value)
{
    const QString wanted = value.trimmed();
    setting_ = true;
    if (inputMask() != qtMask_)
        ApplyMask();
    setText(wanted);
    if (Value() != wanted) {
        // Codes of an older format must not lose characters only because a dialog was opened.
        setInputMask(QString());
        setText(wanted);
    }
    setting_ = false;
    Tell();
}

void TqsMaskEdit::Tell()
{
    const QString value = Value();
    if (value == lastValue_)
        return;
    lastValue_ = value;
    Q_EMIT ValueChanged();
}

void TqsMaskEdit::StandOnFirstOpen()
{
    if (!inputMask().isEmpty() && Value().isEmpty())
        setCursorPosition(int(qMax(open_.indexOf(true), qsizetype(0))));
}

void TqsMaskEdit::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    StandOnFirstOpen();
}

void TqsMaskEdit::mouseReleaseEvent(QMouseEvent *event)
{
    QLineEdit::mouseReleaseEvent(event);
    StandOnFirstOpen();
}
