// Frame of a utility in the host application: shows one central widget in the working area.
#ifndef CUTILWINDOW_H
#define CUTILWINDOW_H

#include "cwidget.h"

class CUtilWindow : public CWidget
{
    Q_OBJECT

public:
    enum WindowSize {
        WINDOW_WORKING_AREA = 0, // the whole working area (screen region 0)
        WINDOW_HALF = 1
    };

    explicit CUtilWindow(QWidget* parent = nullptr);
    ~CUtilWindow() override;

    void setWindowSize(WindowSize size);
    WindowSize windowSize() const;
    void setCentralWidget(QWidget* widget);
    QWidget* centralWidget() const;

    void updateWindow(bool bRepaint) override;
    // Hides the window; the object stays alive for a later show().
    void closeWindow() override;

signals:
    void requestToClose();

private:
    WindowSize m_size = WINDOW_WORKING_AREA;
    QWidget* m_central = nullptr;
};

#endif
