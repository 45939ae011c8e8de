#include "Notch/StatusRing.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Placement/Layout.h"
#include "Usage/UsageColors.h"
#include "Widgets/Palette.h"

namespace nubble {

namespace {

constexpr double stroke = 2.75;
constexpr double scarceStroke = 3.5; // where little is left
constexpr double arcLength = 0.25;   // in turns
constexpr double badgeRadius = 5.5;
constexpr double badgeGap = 1; // between it and the ring

// Of the middle of a stroke that ends where the ring does.
constexpr double radiusOf(double width)
{
    return (Layout::ringDiameter - width) / 2;
}

QRectF circle(const QPointF &center, double r)
{
    return {center.x() - r, center.y() - r, 2 * r, 2 * r};
}

// On the middle of the ring's stroke, clockwise from the top.
QPointF pointAt(const QPointF &center, double turn)
{
    const double angle = (turn - 0.25) * 2 * std::numbers::pi;
    return center + radiusOf(stroke) * QPointF(std::cos(angle), std::sin(angle));
}

// A part of the ring, clockwise from the top; both in turns.
void drawArc(
    QPainter &painter, const QPointF &center, const QColor &color, double start, double length,
    double width = stroke)
{
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(
        circle(center, radiusOf(width)), qRound((0.25 - start) * 360 * 16), qRound(-length * 360 * 16));
}

void drawTrack(QPainter &painter, const QPointF &center)
{
    painter.setPen(QPen(Palette::ringTrack, stroke));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(circle(center, radiusOf(stroke)));
}

// Eight petals around an open middle.
void drawGlyph(QPainter &painter, const QPointF &center, const QColor &color)
{
    painter.setPen(QPen(color, 1.7, Qt::SolidLine, Qt::RoundCap));
    for (int ray = 0; ray < 8; ++ray) {
        const double angle = ray * std::numbers::pi / 4;
        const QPointF direction(std::cos(angle), std::sin(angle));
        const double length = ray % 2 == 0 ? 5.6 : 4.7;
        painter.drawLine(center + direction * 1.9, center + direction * length);
    }
}

void drawCheckMark(QPainter &painter, const QPointF &center, const QColor &color, double drawn)
{
    const QLineF lines[]{{{-4.6, 0.4}, {-1.4, 3.6}}, {{-1.4, 3.6}, {4.7, -3.2}}};
    double left = drawn * (lines[0].length() + lines[1].length());
    QPolygonF points{center + lines[0].p1()};
    for (const QLineF &line : lines) {
        if (left > 0)
            points.append(center + line.pointAt(std::min(left / line.length(), 1.0)));
        left -= line.length();
    }
    painter.setPen(QPen(color, 2.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(points);
}

} // namespace

void drawCompletion(QPainter &painter, const QPointF &center, double drawn)
{
    drawArc(painter, center, Palette::ample, 0, 1);
    drawCheckMark(painter, center, Palette::ample, drawn);
}

void drawStatusRing(
    QPainter &painter, const QPointF &center, std::optional<double> fraction, double strength, bool waiting)
{
    drawTrack(painter, center);
    if (const int percent = percentOf(fraction.value_or(0)); percent > 0) {
        painter.setOpacity(strength);
        drawArc(
            painter, center, colorOf(levelOf(percent)), 0, percent / 100.0,
            isScarce(percent) ? scarceStroke : stroke);
        painter.setOpacity(1);
    }
    drawGlyph(painter, center, waiting ? Palette::badge : Palette::textSecondary);
}

void drawActivityArc(QPainter &painter, const QPointF &center, double turn, bool waiting)
{
    drawTrack(painter, center);
    drawArc(painter, center, Palette::bronze, turn, arcLength);
    drawGlyph(painter, center, waiting ? Palette::badge : Palette::bronze);
}

std::array<QRectF, 2> changedByTurning(const QPointF &center, double from, double to)
{
    const auto around = [&](double end) { // from its round cap there to the one here, drawn a little beside
        const QRectF caps = circle(pointAt(center, from + end), stroke / 2)
                                .united(circle(pointAt(center, to + end), stroke / 2));
        return caps.adjusted(-1, -1, 1, 1);
    };
    return {around(0), around(arcLength)};
}

bool isScarce(int percent)
{
    return percent > 90;
}

void drawWaitingBadge(QPainter &painter, const QPointF &center, double size)
{
    constexpr double distance = Layout::ringDiameter / 2 + badgeGap + badgeRadius;
    const QPointF corner = center + QPointF(1, -1) * (distance * std::numbers::sqrt2 / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::badge);
    painter.drawEllipse(circle(corner, badgeRadius * size));
}

} // namespace nubble
