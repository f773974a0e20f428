#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "generators/OutputKinds.h"

namespace testsupport {

QString freshDir(const QString& name) {
    const QString path = QStringLiteral(ORVELLA_TEST_OUTPUT "/") + name;
    QDir(path).removeRecursively();
    QDir().mkpath(path);
    return path + u'/';
}

SettingsStore settingsWith(const std::vector<std::pair<QString, QString>>& overrides) {
    SettingsStore store(OutputKinds::registry());
    for (const auto& [name, value] : overrides) {
        QString error;
        EXPECT_TRUE(store.set(name, value, &error)) << error.toStdString();
    }
    return store;
}

int runProgram(const QString& program, const QStringList& arguments, QString* out, QString* err,
               int timeoutMs, const QProcessEnvironment* environment) {
    QProcess process;
    if (environment) process.setProcessEnvironment(*environment);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) return -1;  // QProcess kills it on its way out
    if (out) *out = QString::fromUtf8(process.readAllStandardOutput());
    if (err) *err = QString::fromUtf8(process.readAllStandardError());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

int orvella(const QStringList& arguments, QString* out, QString* err,
            const QProcessEnvironment* environment) {
    return runProgram(QStringLiteral(ORVELLA_BINARY), arguments, out, err, 180000, environment);
}

QString orvellaOut(int code, const QStringList& arguments, QString* err,
                   const QProcessEnvironment* environment) {
    QString out, errors;
    EXPECT_EQ(orvella(arguments, &out, &errors, environment), code)
        << arguments.join(u' ').toStdString() << '\n'
        << errors.toStdString();
    if (err) *err = errors;
    return out;
}

QProcessEnvironment homeIn(const QString& root) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", root + "home");
    env.insert("XDG_DATA_HOME", root + "data");
    env.insert("XDG_CONFIG_HOME", root + "config");
    return env;
}

QString makePhoto(const QString& path, int width, int height) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    EXPECT_EQ(runProgram("vips", {"black", path, QString::number(width), QString::number(height),
                                  "--bands", "3"}),
              0)
        << path.toStdString();
    return path;
}

QStringList filesUnder(const QString& dir) {
    QStringList files;
    for (QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        files.append(it.next().mid(dir.size()));
    files.sort();
    return files;
}

QMap<QString, QByteArray> contentsUnder(const QString& dir) {
    QMap<QString, QByteArray> files;
    for (QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();) {
        const QString path = it.next();
        files.insert(path.mid(dir.size()), readFile(path));
    }
    return files;
}

QByteArray readFile(const QString& path, const QByteArray& ifMissing) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : ifMissing;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size()) << path.toStdString();
}

QString exiftool(const QString& file, const QString& tag) {
    QString out;
    runProgram("exiftool", {"-s3", "-" + tag, file}, &out);
    if (out.endsWith(u'\n')) out.chop(1);
    return out;
}

QStringList mateBackgroundJpegs() {
    QStringList files;
    QDirIterator it("/usr/share/backgrounds/mate", {"*.jpg", "*.jpeg", "*.JPG"}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) files.append(it.next());
    files.sort();
    return files;
}

QStringList cameraPhotos(int count, const QString& dir) {
    QStringList photos;
    for (const QString& jpeg : mateBackgroundJpegs()) {
        if (QFileInfo(jpeg).size() >= 400000 || photos.size() == count) continue;
        photos.append(dir.isEmpty() ? jpeg : dir + QFileInfo(jpeg).fileName());
        EXPECT_TRUE(dir.isEmpty() || QFile::copy(jpeg, photos.last())) << jpeg.toStdString();
    }
    EXPECT_EQ(photos.size(), count);
    return photos;
}

QMap<QString, QByteArray> pagesUnder(const QString& dir) {
    QMap<QString, QByteArray> pages;
    for (const QString& f : filesUnder(dir))
        if (f.endsWith(".html") || f.endsWith(".css")) pages.insert(f, readFile(dir + f));
    return pages;
}

}  // namespace testsupport
