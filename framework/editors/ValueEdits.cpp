// SPDX-License-Identifier: Apache-2.0
#include <QFocusEvent>
#include <QRegularExpression>
#include <QValidator>

#include <algorithm>
#include <cmath>
#include <functional>

#include "framework/Kvglobal.h"
#include "framework/editors/DecimalText.h"
#include "framework/editors/Editors.h"

namespace {

// Nothing is Intermediate: a box left with "-" or "" in it has a value (0), and its editingFinished must come.
class TTextFilter final : public QValidator
{
public:
    TTextFilter(std::function<bool(QString &)> accept, QObject *parent)
        : QValidator(parent)
        , accept_(std::move(accept))
    {}
    State validate(QString &text, int &cursor) const override
    {
        if (!accept_(text))
            return Invalid;
        cursor = std::min(cursor, int(text.size()));
        return Acceptable;
    }

private:
    std::function<bool(QString &)> accept_;
};

// Commas are taken out where they part thousands. Anywhere else one may be meant as a decimal comma, and leaving it out
// would make the number ten or a hundred times as large.
bool DropThousands(QString &text)
{
    if (!text.contains(u','))
        return true;
    static const QRegularExpression grouped(QStringLiteral("^[+-]?[0-9]{1,3}(,[0-9]{3})+([.:][0-9]*)?$"));
    if (!grouped.match(text).hasMatch())
        return false;
    text.remove(u',');
    return true;
}

void DropBlanks(QString &text)
{
    text.removeIf([](QChar c) { return c.isSpace(); });
}

bool IsNegative(const QString &cleaned)
{
    return cleaned.startsWith(u'-');
}

// Beyond these a double has no decimals left to be exact in.
const QRegularExpression &PlainNumber()
{
    static const QRegularExpression pattern(QStringLiteral("^[+-]?[0-9]{0,12}(\\.[0-9]{0,12})?$"));
    return pattern;
}

QString MinutesText(double hours)
{
    const qlonglong minutes = std::isfinite(hours) ? std::llround(std::abs(hours) * 60) : 0;
    return QStringLiteral("%1%2:%3")
        .arg(hours < 0 && minutes > 0 ? QStringLiteral("-") : QString())
        .arg(minutes / 60)
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

TqsValueEdit::TqsValueEdit(QWidget *parent)
    : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setValidator(new TTextFilter([this](QString &text) { return formatting_ || Clean(text); }, this));
    ShowReadable(this);
    connect(this, &QLineEdit::textEdited, this, [this] { typed_ = true; });
    connect(this, &QLineEdit::textChanged, this, &TqsValueEdit::OnTextChanged);
}

void TqsValueEdit::OnTextChanged()
{
    if (formatting_)
        return;
    const bool typed = std::exchange(typed_, false);
    QString cleaned = text();
    if (!Clean(cleaned)) { // a text set by code: the validator refuses only what is typed or pasted
        formatting_ = true;
        setText(lastText_);
        formatting_ = false;
        return;
    }
    lastText_ = text();
    const double value = Parse(cleaned);
    if (!typed && !hasFocus()) {
        const double before = std::exchange(value_, value);
        Reformat();
        if (value != before)
            Q_EMIT ValueChanged();
        return;
    }
    Assign(value);
}

void TqsValueEdit::Assign(double value)
{
    if (value == value_)
        return;
    value_ = value;
    Q_EMIT ValueChanged();
}

void TqsValueEdit::Reformat()
{
    const QString shown = Format(value_, hasFocus() && !isReadOnly());
    formatting_ = true;
    if (text() != shown)
        setText(shown);
    lastText_ = text();
    formatting_ = false;
}

void TqsValueEdit::SetMaximum(std::optional<double> maximum)
{
    maximum_ = maximum;
}

void TqsValueEdit::SetMinimum(std::optional<double> minimum)
{
    minimum_ = minimum;
}

bool TqsValueEdit::WithinBounds(double value, bool negative) const
{
    if (maximum_ && value > *maximum_)
        return false;
    return !minimum_ || !negative || (*minimum_ < 0 && value >= *minimum_);
}

void TqsValueEdit::SetDecimals(int decimals)
{
    decimals_ = std::clamp(decimals, 0, 8);
    SetValue(value_);
}

void TqsValueEdit::SetValue(double value)
{
    const double before = std::exchange(value_, Kept(value));
    Reformat();
    if (value_ != before)
        Q_EMIT ValueChanged();
}

void TqsValueEdit::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    const bool backAgain = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason;
    if (backAgain && text() != Format(value_, false))
        return; // to a number that is being typed
    Reformat();
    if (reason != Qt::MouseFocusReason)
        selectAll();
}

void TqsValueEdit::focusOutEvent(QFocusEvent *event)
{
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        Reformat();
    QLineEdit::focusOutEvent(event);
}

TqsNumberEdit::TqsNumberEdit(QWidget *parent)
    : TqsValueEdit(parent)
{
    Reformat();
}

void TqsNumberEdit::SetSuffix(const QString &suffix)
{
    suffix_ = suffix;
    Reformat();
}

bool TqsNumberEdit::Clean(QString &text) const
{
    QString number = text;
    if (!suffix_.isEmpty() && number.endsWith(suffix_))
        number.chop(suffix_.size());
    DropBlanks(number);
    if (number.endsWith(u'%') || number.endsWith(u'$'))
        number.chop(1);
    if (number.startsWith(u'$'))
        number.remove(0, 1);
    else if (number.startsWith(QLatin1String("-$")))
        number.remove(1, 1);
    if (!DropThousands(number) || !PlainNumber().match(number).hasMatch())
        return false;
    if (!WithinBounds(number.toDouble(), IsNegative(number)))
        return false;
    text = number;
    return true;
}

double TqsNumberEdit::Parse(const QString &cleaned) const
{
    return RoundedDecimal(cleaned, Decimals()).toDouble();
}

double TqsNumberEdit::Kept(double value) const
{
    return RoundedDecimal(DecimalDigits(value), Decimals()).toDouble();
}

QString TqsNumberEdit::Format(double value, bool editing) const
{
    const QString number = RoundedDecimal(DecimalDigits(value), Decimals());
    return editing ? number : number + suffix_;
}

TqsHoursEdit::TqsHoursEdit(QWidget *parent)
    : TqsValueEdit(parent)
{
    Reformat();
}

void TqsHoursEdit::SetCountsHours(bool hours)
{
    countsHours_ = hours;
    Reformat();
}

bool TqsHoursEdit::AsMinutes() const
{
    return countsHours_ && Installation().hoursAndMinutes;
}

bool TqsHoursEdit::Clean(QString &text) const
{
    static const QRegularExpression clock(QStringLiteral("^[+-]?[0-9]{0,7}:([0-5]?[0-9])?$"));
    QString hours = text;
    DropBlanks(hours);
    if (!DropThousands(hours) || (!PlainNumber().match(hours).hasMatch() && !clock.match(hours).hasMatch()))
        return false;
    if (!WithinBounds(Parse(hours), IsNegative(hours)))
        return false;
    text = hours;
    return true;
}

double TqsHoursEdit::Parse(const QString &cleaned) const
{
    const qsizetype colon = cleaned.indexOf(u':');
    double hours = cleaned.toDouble();
    if (colon >= 0) {
        const bool negative = IsNegative(cleaned);
        const QString whole = cleaned.left(colon).remove(u'-').remove(u'+');
        const int minutes = whole.toInt() * 60 + cleaned.mid(colon + 1).toInt();
        hours = (negative ? -minutes : minutes) / 60.0;
    }
    if (AsMinutes())
        return double(std::llround(hours * 60)) / 60.0;
    return RoundedDecimal(colon >= 0 ? DecimalDigits(hours) : cleaned, Decimals()).toDouble();
}

QString TqsHoursEdit::Format(double value, bool) const
{
    return AsMinutes() ? MinutesText(value) : RoundedDecimal(DecimalDigits(value), Decimals());
}

QString HoursText(double hours, int decimals)
{
    return Installation().hoursAndMinutes ? MinutesText(hours) : RoundedDecimal(DecimalDigits(hours), decimals);
}
