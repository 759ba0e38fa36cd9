// The window's texts in the user's language.
#ifndef DESKTOP_TRANSLATION_H
#define DESKTOP_TRANSLATION_H

namespace wsa::desktop
{

// Installs the window's catalogue for the system locale (LANGUAGE, LC_ALL, LC_MESSAGES, LANG),
// once per application. Its contexts are the window's own, so the handheld view's catalogue
// answers for its texts as before.
void installTranslator();

} // namespace wsa::desktop

#endif
