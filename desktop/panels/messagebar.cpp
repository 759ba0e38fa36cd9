#include "messagebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <cstdio>

namespace wsa::desktop
{

MessageBar::MessageBar(QWidget* parent) : QFrame(parent), m_text(new QLabel)
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton;
    close->setText(tr("Close"));
    close->setAutoRaise(true);
    connect(close, &QToolButton::clicked, this, &MessageBar::clear);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 4, 4);
    row->addWidget(m_text, 1);
    row->addWidget(close);
    setVisible(false);
}

QString MessageBar::text() const
{
    return isHidden() ? QString() : m_text->text();
}

void MessageBar::showMessage(const LinkMessage& message)
{
    // Pale, so that the text keeps the palette's contrast in light and dark themes alike.
    static const QColor tint[] = {QColor(0xd0, 0xe4, 0xf7), QColor(0xfb, 0xe9, 0xb7),
                                  QColor(0xf6, 0xc6, 0xc3)};
    QPalette p = palette();
    p.setColor(QPalette::Window, tint[int(message.severity)]);
    p.setColor(QPalette::WindowText, Qt::black);
    setPalette(p);
    m_text->setText(message.text);
    setVisible(true);
    // Also on the console, where a terminal user or a log looks.
    std::fprintf(stderr, "wsa: %s\n", qPrintable(message.text));
}

void MessageBar::clear()
{
    m_text->clear();
    setVisible(false);
}

} // namespace wsa::desktop
