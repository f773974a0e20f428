#include "metadata/KLFileProperty.h"

QStringList KLFileProperty::hGetFileNameProps(const QString& path) const {
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/')) trimmed.chop(1);
    const QString name = trimmed.mid(trimmed.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || dot == name.size() - 1) return {name, QString(), name};
    return {name, name.mid(dot + 1), name.left(dot)};
}

QString KLFileProperty::klGetFileLabel(const QString& path) const {
    // Files carry no colour labels on this platform, so there is never a label to read.
    Q_UNUSED(path);
    return QStringLiteral("none");
}
