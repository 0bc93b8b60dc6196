#pragma once

class QString;

/// Lets the windows follow the scale of the display: call before there is an application. A factor such as 1.25 is
/// taken as it is, since a rounded one would leave the windows small while their texts grow.
void followDisplayScale();

/// Gives every window the program's icon.
void setWindowIcons();

/// Lets the toolkit's own buttons and dialogs speak one language with the program: Japanese while there is no
/// language file, otherwise the language of the system's locale. Where the toolkit's translation is not installed
/// they stay English. Call before there is a window.
void translateToolkit(const QString &langFile);
