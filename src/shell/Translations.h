#pragma once

class QApplication;
class QLocale;

namespace thntfs {

/// Loads the translations of the first of a locale's languages that has any: Qt's own, for the texts of its
/// dialogs and standard buttons, and th-ntfs_LANGUAGE.qm for ours. Ours lie in the user's data folder or in
/// ../share beside the program's. To be called before a window is made. What is missing stays English.
void LoadTranslations(QApplication& application, const QLocale& locale);

} // namespace thntfs
