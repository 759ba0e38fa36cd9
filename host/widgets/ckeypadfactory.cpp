#include "ckeypadfactory.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "cdialog.h"
#include "cpushbutton.h"
#include "cwidgetstyle.h"

QString CKeyPadFactory::accessKeyPad(const QString& title, const QString& text, int type,
                                     int minLength, int maxLength, QWidget* parent)
{
    // On the heap, not the stack: the parent may be deleted while the keypad is open, and it
    // deletes its children.
    const QPointer<CDialog> dialog = new CDialog(parent);
    dialog->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    dialog->setWindowTitle(title);
    dialog->setBorderWidth(2);
    dialog->setFixedSize(420, 170);

    auto* heading = new QLabel(title);
    QPalette headingPal = heading->palette();
    headingPal.setColor(QPalette::WindowText,
                        CWidgetStyle::getColor(CWidgetStyle::COLOR_FOREGROUND));
    heading->setPalette(headingPal);

    auto* edit = new QLineEdit(text);
    if (maxLength > 0)
        edit->setMaxLength(maxLength);
    if (type == KEYPAD_NUMERIC) {
        edit->setValidator(new QRegularExpressionValidator(
            QRegularExpression(QStringLiteral("[-+]?[0-9]*\\.?[0-9]*")), edit));
    }
    edit->selectAll();

    auto* ok = new CPushButton;
    ok->setStyle(CPushButton::STYLE_TOOL, false);
    // Qt's own catalogue has the standard button texts in every language it ships.
    ok->setText(QCoreApplication::translate("QPlatformTheme", "OK"));
    ok->setDefault(true);
    auto* cancel = new CPushButton;
    cancel->setStyle(CPushButton::STYLE_TOOL, false);
    cancel->setText(QCoreApplication::translate("QPlatformTheme", "Cancel"));

    const int minimum = qMax(0, minLength);
    auto updateOk = [ok, edit, minimum]() { ok->setEnabled(edit->text().size() >= minimum); };
    QObject::connect(edit, &QLineEdit::textChanged, dialog.data(), updateOk);
    updateOk();
    QObject::connect(ok, &QPushButton::clicked, dialog.data(), &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, dialog.data(), &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(dialog.data());
    layout->setContentsMargins(16, 12, 16, 12);
    layout->addWidget(heading);
    layout->addWidget(edit);
    layout->addStretch(1);
    layout->addLayout(buttons);

    CWidgetStyle::moveToScreenCenter(dialog.data());
    edit->setFocus();
    const int result = dialog->exec();
    if (!dialog)
        return QString(); // deleted with its parent: as a cancel
    const QString entered = edit->text();
    delete dialog.data();
    if (result != QDialog::Accepted)
        return QString();
    // An accepted empty entry must stay distinguishable from a cancel.
    return entered.isEmpty() ? QString(QLatin1String("")) : entered;
}
