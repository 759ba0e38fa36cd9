// Base widget of the test set's widget library: a QWidget with a background colour and a border
// of its own, and the library's virtual operations.
#ifndef CWIDGET_H
#define CWIDGET_H

#include <QColor>
#include <QWidget>

class CWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CWidget(QWidget* parent = nullptr);
    ~CWidget() override;

    virtual int type() const;
    virtual bool apply();
    virtual void initialize();
    virtual bool load();
    virtual bool save();
    virtual void updateParm();
    virtual void setSize(int w, int h);
    virtual void setSize(const QSize& size);
    virtual void setFixedSize(int w, int h);
    using QWidget::setFixedSize;
    virtual void setWidth(int w);
    virtual void setHeight(int h);
    virtual void clientWndStateChanged(int state);
    virtual void translate();
    virtual void updateWidgetStyle();
    virtual void updateWindow(bool bRepaint);
    virtual void closeWindow();
    virtual void setArrowKeyFocus(bool bFocus);
    virtual bool hasArrowKeyFocus() const;

    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const;
    void setBorderColor(const QColor& color);
    QColor borderColor() const;
    // Border line widths in pixels on the left, top, right and bottom edges.
    void setBorderWidth(int left, int top, int right, int bottom);
    void setBorderWidth(int width);
    QMargins borderWidth() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_background;
    QColor m_border;
    QMargins m_borderWidth;
    bool m_arrowKeyFocus = false;
};

#endif
