// SPDX-License-Identifier: Apache-2.0
#include "framework/widgets/Plot.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kTicks = 5;
constexpr double kKeySteps = 100; // arrow presses from end to end

// Grouped digits in every locale, since earnings run to millions.
QString AxisText(double value, double step)
{
    const int decimals = step >= 1 ? 0 : int(std::ceil(-std::log10(step)));
    return QLocale(QLocale::English, QLocale::Australia).toString(value, 'f', decimals);
}

QColor Mixed(const QColor &a, const QColor &b, double shareOfB)
{
    const auto mix = [shareOfB](float x, float y) { return float(x * (1 - shareOfB) + y * shareOfB); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
}

QList<double> TicksOf(double minimum, double maximum, double step)
{
    QList<double> ticks;
    for (double i = std::ceil(minimum / step - 1e-9); i * step <= maximum + step * 1e-9; ++i)
        ticks.append(i * step);
    return ticks;
}

} // namespace

double NiceStep(double range, int count)
{
    if (!(range > 0) || count < 1)
        return 1;
    const double rough = range / count;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 2.5, 5.0}) {
        if (rough <= factor * power * (1 + 1e-9))
            return factor * power;
    }
    return 10 * power;
}

TqsPlot::TqsPlot(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void TqsPlot::SetAxes(const QString &xCaption, const QString &yCaption)
{
    xCaption_ = xCaption;
    yCaption_ = yCaption;
    update();
}

void TqsPlot::SetRange(double minimum, double maximum)
{
    minimum_ = minimum;
    maximum_ = std::max(maximum, minimum + 1e-6);
    update();
}

void TqsPlot::SetSeries(const QList<TPlotSeries> &series)
{
    series_ = series;
    update();
}

void TqsPlot::SetMarks(const QList<double> &marks)
{
    marks_ = marks;
    update();
}

void TqsPlot::SetReadOut(std::function<TReading(double)> readOut)
{
    readOut_ = std::move(readOut);
    update();
}

void TqsPlot::SetMarker(std::optional<double> x)
{
    marker_ = x;
    resting_ = x;
    update();
}

TqsPlot::TScale TqsPlot::XScale() const
{
    return {minimum_, maximum_, NiceStep(maximum_ - minimum_, kTicks)};
}

TqsPlot::TScale TqsPlot::YScale() const
{
    double low = 0;
    double high = 0;
    for (const TPlotSeries &line : series_) {
        for (const QPointF &point : line.points) {
            if (point.x() < minimum_ || point.x() > maximum_)
                continue;
            low = std::min(low, point.y());
            high = std::max(high, point.y());
        }
    }
    // A line that dips below 0 by a few cents does not deserve half of the plot.
    if (low > -0.02 * high)
        low = 0;
    if (high - low < 1e-9)
        high = low + 1;
    const double step = NiceStep(high - low, kTicks);
    return {std::floor(low / step + 1e-9) * step, std::ceil(high / step - 1e-9) * step, step};
}

QRectF TqsPlot::PlotArea() const
{
    const TScale y = YScale();
    const int line = fontMetrics().height();
    int widest = 0;
    for (const double tick : TicksOf(y.minimum, y.maximum, y.step))
        widest = std::max(widest, fontMetrics().horizontalAdvance(AxisText(tick, y.step)));
    const QRectF whole = QRectF(rect()).adjusted(4, 4, -4, -4);
    const int half = fontMetrics().horizontalAdvance(AxisText(maximum_, XScale().step)) / 2;
    return whole.adjusted(widest + 8, line + 6, -std::max(half, 8), -(2 * line + 8));
}

QPointF TqsPlot::ToScreen(const QPointF &point, const QRectF &area, const TScale &x, const TScale &y) const
{
    return {area.left() + (point.x() - x.minimum) / (x.maximum - x.minimum) * area.width(),
            area.bottom() - (point.y() - y.minimum) / (y.maximum - y.minimum) * area.height()};
}

void TqsPlot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Active, QPalette::Text);
    const QColor faint = Mixed(base, text, 0.16);
    painter.fillRect(rect(), base);
    painter.setPen(Mixed(base, text, 0.35));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));

    const QRectF area = PlotArea();
    if (area.width() < 20 || area.height() < 20)
        return;
    const TScale x = XScale();
    const TScale y = YScale();
    const int line = fontMetrics().height();

    for (const double tick : TicksOf(y.minimum, y.maximum, y.step)) {
        const double at = std::round(ToScreen({x.minimum, tick}, area, x, y).y()) + 0.5;
        painter.setPen(faint);
        painter.drawLine(QPointF(area.left(), at), QPointF(area.right(), at));
        painter.setPen(text);
        painter.drawText(QRectF(0, at - line / 2.0, area.left() - 5, line), Qt::AlignRight | Qt::AlignVCenter,
                         AxisText(tick, y.step));
    }
    for (const double tick : TicksOf(x.minimum, x.maximum, x.step)) {
        const double at = std::round(ToScreen({tick, y.minimum}, area, x, y).x()) + 0.5;
        painter.setPen(faint);
        painter.drawLine(QPointF(at, area.bottom()), QPointF(at, area.bottom() + 4));
        painter.setPen(text);
        painter.drawText(QRectF(at - 60, area.bottom() + 5, 120, line), Qt::AlignHCenter | Qt::AlignTop,
                         AxisText(tick, x.step));
    }
    painter.drawText(QRectF(area.left(), area.bottom() + line + 6, area.width(), line), Qt::AlignCenter, xCaption_);
    painter.drawText(QRectF(6, 4, width() - 12, line), Qt::AlignLeft | Qt::AlignVCenter, yCaption_);

    painter.setPen(QPen(Mixed(base, text, 0.3), 1, Qt::DotLine));
    for (const double mark : std::as_const(marks_)) {
        if (mark <= x.minimum || mark >= x.maximum)
            continue;
        const double at = std::round(ToScreen({mark, 0}, area, x, y).x()) + 0.5;
        painter.drawLine(QPointF(at, area.top()), QPointF(at, area.bottom()));
    }
    painter.setPen(Mixed(base, text, 0.6));
    painter.drawLine(area.bottomLeft(), area.bottomRight());
    painter.drawLine(area.topLeft(), area.bottomLeft());

    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.setClipRect(area.adjusted(-1, -2, 1, 2));
    constexpr double kSpread = 0.28; // further lines are turned around the colour circle
    for (int i = 0; i < series_.size(); ++i) {
        QColor colour = palette().color(QPalette::Active, QPalette::Highlight);
        // On a dark ground the selection's colour is too dim for a thin line.
        if (base.lightnessF() < 0.5f)
            colour = colour.lighter(140);
        if (i > 0) {
            const double hue = std::fmod(std::max(0.0, double(colour.hsvHueF())) + kSpread * i, 1.0);
            colour.setHsvF(float(hue), std::max(0.5f, colour.hsvSaturationF()), colour.valueF());
        }
        painter.setPen(QPen(colour, 2));
        QPainterPath path;
        for (int p = 0; p < series_[i].points.size(); ++p) {
            const QPointF at = ToScreen(series_[i].points[p], area, x, y);
            if (p == 0)
                path.moveTo(at);
            else
                path.lineTo(at);
        }
        painter.drawPath(path);
    }
    painter.restore();
    PaintMarker(painter, area, x, y);

    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect().adjusted(2, 2, -2, -2);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void TqsPlot::PaintMarker(QPainter &painter, const QRectF &area, const TScale &x, const TScale &y) const
{
    if (!marker_ || !readOut_ || *marker_ < x.minimum || *marker_ > x.maximum)
        return;
    const TReading reading = readOut_(*marker_);
    const QPointF at = ToScreen({*marker_, std::clamp(reading.y, y.minimum, y.maximum)}, area, x, y);
    const QColor text = palette().color(QPalette::Active, QPalette::Text);
    painter.setPen(QPen(text, 1, Qt::DashLine));
    painter.drawLine(QPointF(at.x(), area.top()), QPointF(at.x(), area.bottom()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(text);
    painter.drawEllipse(at, 4, 4);

    QRectF box = painter.fontMetrics().boundingRect(QRect(0, 0, int(area.width()), 200), Qt::AlignLeft, reading.text);
    box.adjust(-6, -4, 6, 4);
    // Beside the marker, on the side that has room for it.
    const bool left = at.x() + 10 + box.width() > area.right();
    box.moveLeft(std::max(area.left() + 2, left ? at.x() - 10 - box.width() : at.x() + 10));
    box.moveTop(area.top() + 4);
    painter.setPen(Mixed(palette().color(QPalette::Base), text, 0.35));
    painter.setBrush(palette().color(QPalette::ToolTipBase));
    painter.drawRoundedRect(box, 3, 3);
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.drawText(box.adjusted(6, 4, -6, -4), Qt::AlignLeft | Qt::AlignVCenter, reading.text);
}

void TqsPlot::MoveMarker(double x)
{
    if (!readOut_)
        return;
    marker_ = std::clamp(x, minimum_, maximum_);
    setAccessibleDescription(readOut_(*marker_).text);
    update();
    Q_EMIT MarkerMoved(*marker_);
}

void TqsPlot::mouseMoveEvent(QMouseEvent *event)
{
    const QRectF area = PlotArea();
    if (area.width() < 1)
        return;
    MoveMarker(minimum_ + (event->position().x() - area.left()) / area.width() * (maximum_ - minimum_));
}

void TqsPlot::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    marker_ = resting_;
    update();
}

void TqsPlot::keyPressEvent(QKeyEvent *event)
{
    const double step = (maximum_ - minimum_) / kKeySteps;
    const double from = marker_.value_or(minimum_);
    double to = from;
    switch (event->key()) {
    case Qt::Key_Right:
        to = from + step;
        break;
    case Qt::Key_Left:
        to = from - step;
        break;
    case Qt::Key_PageUp:
        to = from + 10 * step;
        break;
    case Qt::Key_PageDown:
        to = from - 10 * step;
        break;
    case Qt::Key_Home:
        to = minimum_;
        break;
    case Qt::Key_End:
        to = maximum_;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    MoveMarker(to);
    resting_ = marker_;
}

void TqsPlot::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void TqsPlot::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}
