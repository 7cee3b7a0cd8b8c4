// SPDX-License-Identifier: Apache-2.0
#include "framework/editors/Editors.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

#include <cmath>

#include "framework/editors/DecimalText.h"

namespace {

QColor Mixed(const QColor &a, const QColor &b, double shareOfB)
{
    const auto mix = [shareOfB](float x, float y) { return float(x * (1 - shareOfB) + y * shareOfB); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
}

class TReadableLook final : public QObject
{
public:
    explicit TReadableLook(QWidget *control)
        : QObject(control)
        , control_(control)
    {
        control->installEventFilter(this);
        Apply();
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ReadOnlyChange || event->type() == QEvent::ApplicationPaletteChange)
            Apply();
        return false;
    }

private:
    void Apply()
    {
        QPalette palette = QApplication::palette(control_);
        const QColor window = palette.color(QPalette::Active, QPalette::Window);
        const QColor text = Mixed(palette.color(QPalette::Active, QPalette::Text), window, 0.25);
        for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            palette.setColor(QPalette::Disabled, role, text);
        palette.setColor(QPalette::Disabled, QPalette::Base, window);
        if (control_->property("readOnly").toBool()) {
            palette.setColor(QPalette::Active, QPalette::Base, window);
            palette.setColor(QPalette::Inactive, QPalette::Base, window);
        }
        control_->setPalette(palette);
    }

    QWidget *control_;
};

} // namespace

void ShowReadable(QWidget *control)
{
    new TReadableLook(control);
}

QString RoundedDecimal(const QString &text, int decimals)
{
    const bool negative = text.startsWith(u'-');
    const QString unsignedText = text.startsWith(u'-') || text.startsWith(u'+') ? text.mid(1) : text;
    const qsizetype point = unsignedText.indexOf(u'.');
    QString digits = u'0' + (point < 0 ? unsignedText : unsignedText.left(point)); // a place for the carry
    const QString fraction = point < 0 ? QString() : unsignedText.mid(point + 1);
    digits += fraction.left(decimals).leftJustified(decimals, u'0');
    if (fraction.size() > decimals && fraction[decimals] >= u'5') {
        qsizetype i = digits.size() - 1;
        for (; digits[i] == u'9'; --i)
            digits[i] = u'0';
        digits[i] = QChar(digits[i].unicode() + 1);
    }
    const bool zero = std::all_of(digits.begin(), digits.end(), [](QChar c) { return c == u'0'; });
    if (decimals > 0)
        digits.insert(digits.size() - decimals, u'.');
    qsizetype leading = 0;
    while (leading + 1 < digits.size() && digits[leading] == u'0' && digits[leading + 1] != u'.')
        ++leading;
    digits.remove(0, leading);
    return negative && !zero ? u'-' + digits : digits;
}

QString DecimalDigits(double value)
{
    return std::isfinite(value) ? QString::number(value, 'f', QLocale::FloatingPointShortest) : QStringLiteral("0");
}
