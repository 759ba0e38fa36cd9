// The host's widget style: colours, screen regions and window placement.
#ifndef CWIDGETSTYLE_H
#define CWIDGETSTYLE_H

#include <QColor>
#include <QRect>

class QWidget;

class CWidgetStyle
{
public:
    enum ColorCode {
        COLOR_BACKGROUND = 0, // shared window background: black and white text both legible on it
        COLOR_FOREGROUND = 1,
        COLOR_TITLE = 2,
        COLOR_HIGHLIGHT = 3,
        COLOR_BUTTON = 4,
        COLOR_BUTTON_TEXT = 5,
        COLOR_MODE_BUTTON = 6,
        COLOR_MODE_BUTTON_TEXT = 7,
        COLOR_BORDER = 8,
        COLOR_DISABLED = 9,
        COLOR_ERROR = 10,
        COLOR_DIALOG = 11 // dialog frame and background
    };

    enum ScreenRegion {
        REGION_WORKING_AREA = 0, // 800 x 400: the area under the host's title bar
        REGION_SCREEN = 1,       // 800 x 480: the whole screen
        REGION_TITLE_BAR = 2,    // 800 x 60 at the top
        REGION_STATUS_BAR = 3,
        REGION_LEFT_PANE = 4,
        REGION_CONTENT = 5, // working area without the tool box
        REGION_TOOL_BOX = 6 // 140 wide, full working-area height, at its right edge
    };

    static QColor getColor(ColorCode code);
    static QRect getScreenRegion(ScreenRegion region);
    static void moveToScreenCenter(QWidget* widget);
    static void moveToWorkingAreaCenter(QWidget* widget);
};

#endif
