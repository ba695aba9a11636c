#pragma once

#include "engine/Host.h"

#include <QString>

class QWidget;

namespace thntfs {

enum class BoxButtons { Ok, YesNo, YesNoCancel, SaveCancel };
enum class BoxAnswer { Ok, Yes, No, Cancel };

/// Shows a box and waits for the answer, from any thread. It stands over the window that is active, the main
/// frame in the end. The text is shown as it is, never as markup. A question has its own icon, whatever
/// `icon` says. Closing a box means OK, No or Cancel. SaveCancel is YesNoCancel in the words "Save", "Don't
/// save" and "Cancel". Enter gives the preset answer of a question. `more` stands below the text.
BoxAnswer ShowBox(const QString& text, const QString& caption, BoxIcon icon,
                  BoxButtons buttons = BoxButtons::Ok, BoxAnswer preset = BoxAnswer::Yes,
                  const QString& more = {});

/// A question with Yes and No; true for Yes.
bool AskYesNo(const QString& text, const QString& caption, BoxAnswer preset = BoxAnswer::Yes);

/// Makes the service that shows workers' boxes; to be called on the interface thread before a worker starts.
void PrepareBoxes();

/// From now on nothing is asked or told any more, as the program has been told to end: boxes that stand are
/// closed, and others answer themselves with OK, No or Cancel.
void RefuseBoxes(bool refuse);
bool BoxesAreRefused();

} // namespace thntfs
