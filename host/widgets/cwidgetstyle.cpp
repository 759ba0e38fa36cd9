#include "cwidgetstyle.h"

#include <QWidget>

namespace
{

// The unit's fixed screen and title bar.
constexpr int kScreenWidth = 800;
constexpr int kScreenHeight = 480;
constexpr int kTitleBarHeight = 60;
constexpr int kStatusBarHeight = 20;
constexpr int kToolBoxWidth = 140;
constexpr int kLeftPaneWidth = 200;

// A mid slate: the views draw legend texts in black and axis labels in white straight onto it, so
// its luminance sits where both reach 4.5 : 1 (about 4.58 each); pure white foreground for the same
// reason.
const QColor kBackground(0x5f, 0x79, 0x89);

void centreOn(QWidget* widget, const QRect& area)
{
    if (!widget)
        return;
    QRect frame(QPoint(0, 0), widget->size());
    frame.moveCenter(area.center());
    widget->move(frame.topLeft());
}

} // namespace

QColor CWidgetStyle::getColor(ColorCode code)
{
    switch (code) {
    case COLOR_BACKGROUND:
        return kBackground;
    case COLOR_FOREGROUND:
        return QColor(0xff, 0xff, 0xff);
    case COLOR_TITLE:
        return QColor(0x2b, 0x4a, 0x6b);
    case COLOR_HIGHLIGHT:
        return QColor(0x3d, 0x8e, 0xd8);
    case COLOR_BUTTON:
        return QColor(0x34, 0x44, 0x54);
    case COLOR_BUTTON_TEXT:
        return QColor(0xff, 0xff, 0xff);
    case COLOR_MODE_BUTTON:
        return QColor(0x24, 0x5c, 0x4a);
    case COLOR_MODE_BUTTON_TEXT:
        return QColor(0xff, 0xff, 0xff);
    case COLOR_BORDER:
        return QColor(0x7a, 0x8a, 0x99);
    case COLOR_DISABLED:
        return QColor(0x6b, 0x75, 0x80);
    case COLOR_ERROR:
        return QColor(0xe0, 0x4a, 0x3c);
    case COLOR_DIALOG:
        return QColor(0x26, 0x33, 0x40);
    }
    return kBackground;
}

QRect CWidgetStyle::getScreenRegion(ScreenRegion region)
{
    // The working area lies between the title bar and the status bar.
    const int workHeight = kScreenHeight - kTitleBarHeight - kStatusBarHeight;
    switch (region) {
    case REGION_WORKING_AREA:
        return QRect(0, kTitleBarHeight, kScreenWidth, workHeight);
    case REGION_SCREEN:
        return QRect(0, 0, kScreenWidth, kScreenHeight);
    case REGION_TITLE_BAR:
        return QRect(0, 0, kScreenWidth, kTitleBarHeight);
    case REGION_STATUS_BAR:
        return QRect(0, kScreenHeight - kStatusBarHeight, kScreenWidth, kStatusBarHeight);
    case REGION_LEFT_PANE:
        return QRect(0, kTitleBarHeight, kLeftPaneWidth, workHeight);
    case REGION_CONTENT:
        return QRect(0, kTitleBarHeight, kScreenWidth - kToolBoxWidth, workHeight);
    case REGION_TOOL_BOX:
        return QRect(kScreenWidth - kToolBoxWidth, kTitleBarHeight, kToolBoxWidth, workHeight);
    }
    return QRect(0, kTitleBarHeight, kScreenWidth, workHeight);
}

void CWidgetStyle::moveToScreenCenter(QWidget* widget)
{
    centreOn(widget, getScreenRegion(REGION_SCREEN));
}

void CWidgetStyle::moveToWorkingAreaCenter(QWidget* widget)
{
    centreOn(widget, getScreenRegion(REGION_WORKING_AREA));
}
