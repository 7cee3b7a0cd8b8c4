// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QPointF>
#include <QWidget>

#include <functional>
#include <optional>

#include "framework/Export.h"

// A distance between ticks that people read easily: 1, 2, 2.5 or 5 times a power of ten, such that about `count` of
// them cover `range`. 1 when the range is empty.
CORVEX_API double NiceStep(double range, int count);

// One line of a plot: points in ascending order of x, joined by straight lines.
struct TPlotSeries
{
    QString name;
    QList<QPointF> points;
};

// A small line plot in the palette's colours. A marker shows the value at one x: it follows the mouse, and the arrow
// keys (Page Up and Page Down in larger steps, Home and End) when the plot has the focus. A plot cannot be read by a
// screen reader: whoever shows one offers its numbers as a table beside it.
class CORVEX_API TqsPlot final : public QWidget
{
    Q_OBJECT
public:
    explicit TqsPlot(QWidget *parent = nullptr);

    void SetAxes(const QString &xCaption, const QString &yCaption);
    // The visible stretch of x; y shows what the lines take in it, 0 included.
    void SetRange(double minimum, double maximum);
    void SetSeries(const QList<TPlotSeries> &series);
    const QList<TPlotSeries> &Series() const { return series_; }
    // Values of x at which something changes: drawn as faint vertical lines.
    void SetMarks(const QList<double> &marks);
    // The text at the marker for a value of x, and the height at which the marker stands; without one the plot has no
    // marker.
    struct TReading
    {
        QString text;
        double y = 0;
    };
    void SetReadOut(std::function<TReading(double x)> readOut);
    // None: the marker is taken away.
    void SetMarker(std::optional<double> x);
    std::optional<double> Marker() const { return marker_; }

    QSize sizeHint() const override { return {420, 260}; }
    QSize minimumSizeHint() const override { return {260, 160}; }

Q_SIGNALS:
    void MarkerMoved(double x); // by the user

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct TScale
    {
        double minimum = 0;
        double maximum = 1;
        double step = 1;
    };
    TScale XScale() const;
    TScale YScale() const;
    QRectF PlotArea() const;
    QPointF ToScreen(const QPointF &point, const QRectF &area, const TScale &x, const TScale &y) const;
    void MoveMarker(double x);
    void PaintMarker(QPainter &painter, const QRectF &area, const TScale &x, const TScale &y) const;

    QString xCaption_, yCaption_;
    double minimum_ = 0;
    double maximum_ = 1;
    QList<TPlotSeries> series_;
    QList<double> marks_;
    std::function<TReading(double)> readOut_;
    std::optional<double> marker_;
    std::optional<double> resting_; // where the marker goes when the mouse has left
};
