// SPDX-License-Identifier: Apache-2.0
#include <QEvent>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QRegularExpression>

#include <optional>

#include "framework/editors/Editors.h"

namespace {

// The tables keep "no date" as the first days of 1900.
const QDate kFirstDate(1900, 1, 6);

// A year of one or two digits means the one nearest to today.
int FullYear(int year)
{
    const int today = QDate::currentDate().year();
    const int full = today / 100 * 100 + year;
    return full > today + 49 ? full - 100 : full < today - 50 ? full + 100 : full;
}

// A date box in which a date can be written as on paper: "1/7/26", "1.7.2026", "010726", "1 jul 2026", "2026-07-01".
// QDateEdit's own typing goes section by section, leaps on when a section is full, so that the separator typed next
// leaps again, and refuses the 31 while the month before has only 30 days.
class TDateBox final : public QDateEdit
{
public:
    explicit TDateBox(QWidget *parent)
        : QDateEdit(parent)
    {
        setCalendarPopup(true);
        setMinimumDate(kFirstDate);
        ApplyFormat();
        // What moves from section to section would rewrite the text while it is typed.
        disconnect(lineEdit(), SIGNAL(cursorPositionChanged(int, int)), this, nullptr);
    }

    void stepBy(int steps) override
    {
        Commit();
        const QLineEdit &edit = *lineEdit();
        const int at = edit.selectedText() == edit.text() ? -1
                       : edit.hasSelectedText()           ? edit.selectionStart()
                                                          : edit.cursorPosition();
        QChar part = u'd'; // with the whole date selected it goes by days
        if (at >= 0) {
            const qsizetype before = Parts(edit.text().left(at) + u'0').size();
            part = Order().at(qBound(qsizetype(0), before - 1, Order().size() - 1));
        }
        setDate(part == u'y' ? date().addYears(steps) : part == u'M' ? date().addMonths(steps) : date().addDays(steps));
        SelectPart(part);
    }

    QValidator::State validate(QString &text, int &) const override
    {
        static const QRegularExpression typable(QStringLiteral("^[\\w /.,-]{0,30}$"),
                                                QRegularExpression::UseUnicodePropertiesOption);
        if (const std::optional<QDate> date = Parse(text, false);
            date && *date >= minimumDate() && *date <= maximumDate())
            return QValidator::Acceptable;
        return typable.match(text).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
    }
    void fixup(QString &) const override {}
    QDateTime dateTimeFromText(const QString &text) const override
    {
        return Parse(text, true).value_or(date()).startOfDay();
    }

protected:
    QDateTimeEdit::StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
    bool focusNextPrevChild(bool next) override { return QWidget::focusNextPrevChild(next); }

    void keyPressEvent(QKeyEvent *event) override
    {
        switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Commit();
            [[fallthrough]];
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_Escape:
        case Qt::Key_F4:
            QDateEdit::keyPressEvent(event);
            break;
        default:
            lineEdit()->event(event);
        }
    }
    void focusInEvent(QFocusEvent *event) override
    {
        QDateEdit::focusInEvent(event);
        if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
            event->reason() == Qt::ShortcutFocusReason || event->reason() == Qt::OtherFocusReason)
            lineEdit()->selectAll();
    }
    void focusOutEvent(QFocusEvent *event) override
    {
        Commit();
        QDateEdit::focusOutEvent(event);
    }
    void changeEvent(QEvent *event) override
    {
        QDateEdit::changeEvent(event);
        if (event->type() == QEvent::LocaleChange)
            ApplyFormat();
    }

private:
    void ApplyFormat() { setDisplayFormat(ShortDateFormat(locale())); }

    // Takes over what is typed; what is no date goes back to the date before.
    void Commit()
    {
        const std::optional<QDate> typed = Parse(lineEdit()->text(), true);
        if (typed && *typed >= minimumDate() && *typed <= maximumDate())
            setDate(*typed);
        const QString text = textFromDateTime(dateTime());
        if (lineEdit()->text() != text)
            lineEdit()->setText(text);
    }

    static QStringList Parts(const QString &text)
    {
        static const QRegularExpression separators(QStringLiteral("[ /.,-]+"));
        return text.split(separators, Qt::SkipEmptyParts);
    }

    // "dMy", "Mdy" or "yMd": the order in which the display format names them.
    QString Order() const
    {
        QString order;
        for (const QString &part : Parts(displayFormat())) {
            if (part.startsWith(u'd') || part.startsWith(u'M') || part.startsWith(u'y'))
                order += part[0];
        }
        return order;
    }

    int MonthOf(const QString &text) const
    {
        for (int month = 1; month <= 12 && text.size() >= 3; ++month) {
            for (const QLocale::FormatType format : {QLocale::LongFormat, QLocale::ShortFormat}) {
                if (locale().monthName(month, format).startsWith(text, Qt::CaseInsensitive))
                    return month;
            }
        }
        return 0;
    }

    // `finished` false: only a text whose year has all its digits; while it is typed "1/7/20" is not the year 2020 yet.
    std::optional<QDate> Parse(const QString &text, bool finished) const
    {
        QStringList parts = Parts(text);
        QString order = Order();
        if (parts.size() == 1 && (text.trimmed().size() == 6 || text.trimmed().size() == 8)) {
            QString digits = text.trimmed();
            parts.clear();
            for (const QChar part : std::as_const(order)) {
                const int length = part == u'y' ? int(text.trimmed().size()) - 4 : 2;
                parts += digits.left(length);
                digits.remove(0, length);
            }
        }
        if (parts.size() == 2 && finished)
            parts.insert(order.indexOf(u'y'), QString::number(date().year()));
        if (parts.size() != 3)
            return std::nullopt;
        if (parts[0].size() == 4)
            order = QStringLiteral("yMd");
        int day = 0, month = 0, year = 0;
        for (int i = 0; i < 3; ++i) {
            bool isNumber = false;
            int value = parts[i].toInt(&isNumber);
            if (!isNumber && order[i] == u'M')
                value = MonthOf(parts[i]);
            else if (!isNumber || parts[i].size() > (order[i] == u'y' ? 4 : 2))
                return std::nullopt;
            (order[i] == u'd' ? day : order[i] == u'M' ? month : year) = value;
            if (order[i] == u'y' && parts[i].size() < 4) {
                if (!finished || parts[i].size() > 2)
                    return std::nullopt;
                year = FullYear(value);
            }
        }
        const QDate date(year, month, day);
        return date.isValid() ? std::optional(date) : std::nullopt;
    }

    void SelectPart(QChar part)
    {
        const qsizetype index = Order().indexOf(part);
        static const QRegularExpression word(QStringLiteral("[^ /.,-]+"));
        auto words = word.globalMatch(lineEdit()->text());
        for (qsizetype i = 0; i < index && words.hasNext(); ++i)
            words.next();
        if (words.hasNext()) {
            const QRegularExpressionMatch match = words.next();
            lineEdit()->setSelection(int(match.capturedStart()), int(match.capturedLength()));
        }
    }
};

} // namespace

QString ShortDateFormat(const QLocale &locale)
{
    static const QRegularExpression shortYear(QStringLiteral("(?<!y)yy(?!y)"));
    return locale.dateFormat(QLocale::ShortFormat).replace(shortYear, QStringLiteral("yyyy"));
}

TqsDateEdit::TqsDateEdit(QWidget *parent)
    : QWidget(parent)
    , check_(new QCheckBox(this))
    , date_(new TDateBox(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(check_);
    row->addWidget(date_);
    row->addStretch();
    setFocusPolicy(Qt::StrongFocus);
    date_->setDate(QDate::currentDate());
    date_->setEnabled(false);
    ShowReadable(date_);
    ChooseFocus();
    connect(check_, &QCheckBox::toggled, this, [this](bool on) {
        date_->setEnabled(on || !optional_);
        OnValue();
    });
    connect(date_, &QDateEdit::dateChanged, this, &TqsDateEdit::OnValue);
    connect(this, &QObject::objectNameChanged, this, [this](const QString &name) {
        check_->setObjectName(name + QStringLiteral("Check"));
        date_->setObjectName(name + QStringLiteral("Date"));
    });
}

void TqsDateEdit::SetOptional(bool optional)
{
    optional_ = optional;
    check_->setVisible(optional);
    date_->setEnabled(!optional || check_->isChecked());
    ChooseFocus();
    OnValue();
}

void TqsDateEdit::ChooseFocus()
{
    setFocusProxy(optional_ ? static_cast<QWidget *>(check_) : date_);
}

QDate TqsDateEdit::Date() const
{
    return optional_ && !check_->isChecked() ? QDate() : date_->date();
}

void TqsDateEdit::SetDate(const QDate &date)
{
    const bool exists = date.isValid() && date >= kFirstDate;
    {
        const QSignalBlocker checkBlocker(check_), dateBlocker(date_);
        if (exists || !optional_)
            date_->setDate(exists ? date : QDate::currentDate());
        check_->setChecked(exists);
        date_->setEnabled(exists || !optional_);
    }
    OnValue();
}

void TqsDateEdit::OnValue()
{
    if (Date() == last_)
        return;
    last_ = Date();
    Q_EMIT ValueChanged();
}

QCheckBox *TqsDateEdit::CheckBox() const
{
    return check_;
}

QDateEdit *TqsDateEdit::DateBox() const
{
    return date_;
}
