// SPDX-License-Identifier: Apache-2.0
#include <QEvent>
#include <QHBoxLayout>
#include <QRegularExpression>

#include "framework/editors/Editors.h"

namespace {

// The tables keep "no date" as the first days of 1900.
const QDate kFirstDate(1900, 1, 6);

QString FourDigitYears(QString format)
{
    static const QRegularExpression shortYear(QStringLiteral("(?<!y)yy(?!y)"));
    return format.replace(shortYear, QStringLiteral("yyyy"));
}

// A year typed with one or two digits means the one nearest to today, not the first century.
class TDateBox final : public QDateEdit
{
public:
    explicit TDateBox(QWidget *parent)
        : QDateEdit(parent)
    {
        setCalendarPopup(true);
        setMinimumDate(kFirstDate);
        ApplyFormat();
    }

    void fixup(QString &input) const override
    {
        static const QRegularExpression word(QStringLiteral("\\w+"));
        int year = 0;
        for (auto part = word.globalMatch(displayFormat()); part.hasNext(); ++year) {
            if (part.next().captured().startsWith(u'y'))
                break;
        }
        auto part = word.globalMatch(input);
        for (int i = 0; i < year && part.hasNext(); ++i)
            part.next();
        if (part.hasNext()) {
            const QRegularExpressionMatch match = part.next();
            bool isNumber = false;
            const int shortYear = match.captured().toInt(&isNumber);
            if (isNumber && match.capturedLength() <= 2) {
                const int today = QDate::currentDate().year();
                int full = today / 100 * 100 + shortYear;
                if (full > today + 49)
                    full -= 100;
                else if (full < today - 50)
                    full += 100;
                input.replace(match.capturedStart(), match.capturedLength(), QString::number(full));
            }
        }
        QDateEdit::fixup(input);
    }

protected:
    void changeEvent(QEvent *event) override
    {
        QDateEdit::changeEvent(event);
        if (event->type() == QEvent::LocaleChange)
            ApplyFormat();
    }

private:
    void ApplyFormat() { setDisplayFormat(FourDigitYears(locale().dateFormat(QLocale::ShortFormat))); }
};

} // namespace

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
