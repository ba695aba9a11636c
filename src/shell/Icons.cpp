#include "shell/Icons.h"

#include <QString>

// The library's resources are not linked in of their own accord. The call must stand outside a namespace.
static void UseResources() { Q_INIT_RESOURCE(app); }

namespace thntfs {

QIcon LoadIcon(const char* name) {
    static const bool used = (UseResources(), true);
    return used ? QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name))) : QIcon();
}

} // namespace thntfs
