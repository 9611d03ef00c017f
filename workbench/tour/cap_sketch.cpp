#include "workbench/tour/cap_sketch.h"

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "workbench/control/gdi_plus.h"
#include "workbench/control/pose.h"

namespace workbench {
namespace {

using Gdiplus::Color;
using Gdiplus::PointF;
using Gdiplus::REAL;

constexpr double kReach = 350.0;  // of an axis
constexpr int kWidth = 220, kHeight = 158;
constexpr double kUnit = 34.0;  // pixels; the cap's radius
constexpr double kCapHeight = 0.75;
const PointF kFoot(72.0F, 100.0F);  // the middle of the cap's foot
constexpr double kLeastArrow = 0.85, kMoreArrow = 0.8;
constexpr double kTurnRadius = 1.5, kTurnAngle = 4.3;  // of the arrow that goes around
constexpr REAL kLine = 5.0F, kHead = 14.0F;
constexpr int kFontHeight = 20, kRow = 25, kNumbersLeft = 132, kNumbersTop = 5;
constexpr const char* kAxisNames[] = {"tx", "ty", "tz", "rx", "ry", "rz"};

constexpr COLORREF kPushedText = RGB(214, 84, 0), kTurnedText = RGB(20, 112, 190);
const Color kPaper(232, 255, 255, 255), kEdge(255, 140, 148, 160), kBase(255, 190, 197, 208), kSide(255, 64, 72, 86),
    kTop(255, 112, 124, 146), kPushed(255, 214, 84, 0), kTurned(255, 20, 112, 190);

// Axes as the device has them: to the right, up, and towards whoever holds the cap. What goes to the right does so in
// the picture, too.
PointF project(const Vector& p) {
    const double right = p[0] - 0.22 * p[2], up = 0.88 * p[1] - 0.48 * p[2];
    return {kFoot.X + static_cast<REAL>(right * kUnit), kFoot.Y - static_cast<REAL>(up * kUnit)};
}

// A disc that lies flat.
void drawDisc(Gdiplus::Graphics& graphics, double height, double radius, const Color& colour) {
    constexpr int kCorners = 64;
    std::vector<PointF> edge;
    for (int i = 0; i < kCorners; ++i) {
        edge.push_back(project(turned({radius, height, 0}, {0, 1, 0}, 2 * std::numbers::pi * i / kCorners)));
    }
    const Gdiplus::SolidBrush brush(colour);
    graphics.FillPolygon(&brush, edge.data(), kCorners);
}

void drawCap(Gdiplus::Graphics& graphics) {
    constexpr int kSlices = 30;
    drawDisc(graphics, -0.12, 1.25, kBase);
    for (int i = 0; i < kSlices; ++i) drawDisc(graphics, kCapHeight * i / kSlices, 1.0, kSide);
    drawDisc(graphics, kCapHeight, 0.98, kTop);
}

// A line with a head at its end.
void drawArrow(Gdiplus::Graphics& graphics, const std::vector<PointF>& line, const Color& colour) {
    Gdiplus::Pen pen(colour, kLine);
    pen.SetLineJoin(Gdiplus::LineJoinRound);
    graphics.DrawLines(&pen, line.data(), static_cast<INT>(line.size()));
    const PointF end = line.back(), before = line[line.size() - 2];
    const REAL size = std::hypot(end.X - before.X, end.Y - before.Y);
    if (size < 0.5F) return;  // straight towards the eye
    const PointF along((end.X - before.X) / size * kHead, (end.Y - before.Y) / size * kHead);
    const PointF head[] = {end + along,
                           {end.X - along.Y * 0.7F, end.Y + along.X * 0.7F},
                           {end.X + along.Y * 0.7F, end.Y - along.X * 0.7F}};
    const Gdiplus::SolidBrush brush(colour);
    graphics.FillPolygon(&brush, head, 3);
}

void drawPush(Gdiplus::Graphics& graphics, const Vector& push) {
    const Vector from{0, kCapHeight, 0};
    const double size = kLeastArrow + kMoreArrow * length(push) / kReach;
    drawArrow(graphics, {project(from), project(from + normalised(push) * size)}, kPushed);
}

// Around the cap, right-handed about the turn's axis.
void drawTurn(Gdiplus::Graphics& graphics, const Vector& turn) {
    constexpr int kSteps = 48;
    const Vector axis = normalised(turn);
    // Begins beside the axis, as far from it as any of the three main directions.
    Vector start{0, 1, 0};
    if (std::abs(axis[1]) > 0.7) start = {-1, 0, 0};
    start = normalised(start - axis * dot(start, axis)) * kTurnRadius;
    const Vector middle{0, kCapHeight / 2, 0};
    std::vector<PointF> line;
    for (int i = 0; i <= kSteps; ++i) line.push_back(project(middle + turned(start, axis, kTurnAngle * i / kSteps)));
    drawArrow(graphics, line, kTurned);
}

void drawNumbers(HDC dc, int left, int top, const CapDeflection& cap) {
    const HFONT font = CreateFontW(-kFontHeight, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Tahoma");
    const HGDIOBJ before = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    int y = top + kNumbersTop;
    for (std::size_t i = 0; i < cap.size(); ++i) {
        if (cap[i] == 0) continue;
        SetTextColor(dc, i < 3 ? kPushedText : kTurnedText);
        const std::string label = std::string(kAxisNames[i]) + ' ' + std::to_string(cap[i]);
        TextOutA(dc, left + kNumbersLeft, y, label.c_str(), static_cast<int>(label.size()));
        y += kRow;
    }
    SelectObject(dc, before);
    DeleteObject(font);
}

}  // namespace

void drawCapSketch(Picture& picture, int left, int top, const CapDeflection& cap) {
    const GdiPlus gdiPlus;
    picture.draw([&](HDC dc) {
        {
            Gdiplus::Graphics graphics(dc);
            graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
            graphics.TranslateTransform(static_cast<REAL>(left), static_cast<REAL>(top));
            const Gdiplus::SolidBrush paper(kPaper);
            const Gdiplus::Pen edge(kEdge, 1.5F);
            graphics.FillRectangle(&paper, 0, 0, kWidth, kHeight);
            graphics.DrawRectangle(&edge, 0, 0, kWidth, kHeight);
            drawCap(graphics);
            const Vector push{double(cap[0]), double(cap[1]), double(cap[2])};
            const Vector turn{double(cap[3]), double(cap[4]), double(cap[5])};
            if (length(turn) > 0.0) drawTurn(graphics, turn);
            if (length(push) > 0.0) drawPush(graphics, push);
        }
        drawNumbers(dc, left, top, cap);
    });
}

}  // namespace workbench
