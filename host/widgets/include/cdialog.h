// Dialog of the host widget library: a QDialog with background colour and border.
#ifndef CDIALOG_H
#define CDIALOG_H

#include <QColor>
#include <QDialog>

class CDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CDialog(QWidget* parent = nullptr);
    ~CDialog() override;

    void setSize(int w, int h);
    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const;
    void setBorderColor(const QColor& color);
    QColor borderColor() const;
    void setBorderWidth(int width);
    int borderWidth() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_background;
    QColor m_border;
    int m_borderWidth = 0;
};

#endif
