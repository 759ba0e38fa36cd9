// The host's on-screen keypad.
#ifndef CKEYPADFACTORY_H
#define CKEYPADFACTORY_H

#include <QString>

class QWidget;

class CKeyPadFactory
{
public:
    enum KeyPadType {
        KEYPAD_NUMERIC = 0,
        KEYPAD_FULL = 5 // letters, digits and signs
    };

    // Modal text entry starting with `text`; returns what was entered. A cancelled entry returns
    // a null QString (isNull()), an accepted empty entry an empty, non-null one. minLength and
    // maxLength bound the entry's length.
    static QString accessKeyPad(const QString& title, const QString& text, int type, int minLength,
                                int maxLength, QWidget* parent);
};

#endif
