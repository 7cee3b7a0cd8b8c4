// SPDX-License-Identifier: Apache-2.0
#include "host/Theme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>

namespace {

struct TShades
{
    QRgb window, base, alternate, text, button, border, highlight, highlightedText, link, faint, tip;
};

constexpr TShades kLight{0xffeff1f4, 0xffffffff, 0xfff5f7fa, 0xff1c2127, 0xffe7eaee, 0xffb4bac3,
                         0xff2f6da8, 0xffffffff, 0xff1f5f9e, 0xff858c96, 0xfffdf6dc};
constexpr TShades kDark{0xff2d3238, 0xff1a1d21, 0xff20242a, 0xffe4e7eb, 0xff3b424a, 0xff14161a,
                        0xff3d7db8, 0xffffffff, 0xff78b4e8, 0xff8d949e, 0xff424952};

// Fusion draws the frames of boxes darker than the window, which nobody sees on a dark one.
class TDarkStyle final : public QProxyStyle
{
public:
    TDarkStyle()
        : QProxyStyle(QStringLiteral("Fusion"))
    {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (element != PE_IndicatorCheckBox && element != PE_IndicatorRadioButton)
            return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(option->palette.color(QPalette::PlaceholderText));
        painter->setBrush(Qt::NoBrush);
        const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        if (element == PE_IndicatorCheckBox)
            painter->drawRoundedRect(frame, 2, 2);
        else
            painter->drawEllipse(frame);
        painter->restore();
    }
};

QPalette MakePalette(const TShades &shades)
{
    const auto colour = [](QRgb rgb) { return QColor::fromRgb(rgb); };
    // The constructor derives the shades of raised and sunken edges from the button's.
    QPalette palette(colour(shades.button), colour(shades.window));
    palette.setColor(QPalette::Window, colour(shades.window));
    palette.setColor(QPalette::WindowText, colour(shades.text));
    palette.setColor(QPalette::Base, colour(shades.base));
    palette.setColor(QPalette::AlternateBase, colour(shades.alternate));
    palette.setColor(QPalette::Text, colour(shades.text));
    palette.setColor(QPalette::Button, colour(shades.button));
    palette.setColor(QPalette::ButtonText, colour(shades.text));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Mid, colour(shades.border));
    palette.setColor(QPalette::Highlight, colour(shades.highlight));
    palette.setColor(QPalette::HighlightedText, colour(shades.highlightedText));
    palette.setColor(QPalette::Link, colour(shades.link));
    palette.setColor(QPalette::PlaceholderText, colour(shades.faint));
    palette.setColor(QPalette::ToolTipBase, colour(shades.tip));
    palette.setColor(QPalette::ToolTipText, colour(shades.text));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colour(shades.faint));
    palette.setColor(QPalette::Disabled, QPalette::Base, colour(shades.window));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, colour(shades.border));
    return palette;
}

} // namespace

TColours ColoursFromName(const QString &name)
{
    if (name == QLatin1String("light"))
        return TColours::Light;
    return name == QLatin1String("dark") ? TColours::Dark : TColours::System;
}

QString ColoursName(TColours colours)
{
    switch (colours) {
    case TColours::Light:
        return QStringLiteral("light");
    case TColours::Dark:
        return QStringLiteral("dark");
    case TColours::System:
        break;
    }
    return QStringLiteral("system");
}

void ApplyColours(TColours colours)
{
    QApplication::setStyle(colours == TColours::Dark ? new TDarkStyle
                                                     : QStyleFactory::create(QStringLiteral("Fusion")));
    // A palette without any colour of its own lets the desktop's through again.
    const QPalette palette =
        colours == TColours::System ? QPalette() : MakePalette(colours == TColours::Dark ? kDark : kLight);
    QApplication::setPalette(palette);
    QToolTip::setPalette(QApplication::palette());
}
