// SPDX-License-Identifier: GPL-3.0-or-later
// The build installed into a prefix that is then moved: it runs there and finds its files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "GuiTestSupport.hpp"
#include "application/QcbsInstanceSocket.hpp"
#include "application/QcbsMainWindowSharedData.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"

namespace {

// The build installed once for all tests, into a prefix then moved elsewhere,
// so that nothing can depend on the path it was installed to.
class InstalledTree : public ::testing::Environment {
public:
    void SetUp() override {
        ASSERT_TRUE(root_.isValid());
        QProcess install;
        install.start(TESSARY_CMAKE_COMMAND,
                      {"--install", TESSARY_BINARY_DIR, "--prefix", root_.filePath("stage")});
        ASSERT_TRUE(install.waitForFinished(120000));
        ASSERT_EQ(install.exitCode(), 0) << install.readAllStandardError().toStdString();
        ASSERT_TRUE(QDir(root_.path()).rename("stage", "moved"));
        prefix() = root_.filePath("moved");
    }
    static QString& prefix() {
        static QString path;
        return path;
    }

private:
    QTemporaryDir root_;
};

QString installed(const QString& relative) { return InstalledTree::prefix() + '/' + relative; }

// Runs an installed program with the given environment changes (a null value
// removes the variable) and returns its exit code and output.
struct ProgramRun {
    int exitCode = -1;
    QString out;
    QString err;
};
ProgramRun run(const QString& program, const QStringList& arguments,
               const QList<QPair<QString, QString>>& environment, int milliseconds = 20000) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : environment) {
        if (value.isNull())
            env.remove(name);
        else
            env.insert(name, value);
    }
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(installed(program), arguments);
    ProgramRun result;
    if (!process.waitForFinished(milliseconds)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

// No display of any kind.
const QList<QPair<QString, QString>> kNoDisplay = {
    {"DISPLAY", QString()}, {"WAYLAND_DISPLAY", QString()}, {"QT_QPA_PLATFORM", QString()}};

TEST(Installed, TheProgramItsLibraryAndItsFilesLieUnderThePrefix) {
    for (const char* file :
         {"bin/tessary", "bin/tessary-check", "share/tessary/docs/tessary.html",
          "share/tessary/docs/errors.md", "share/tessary/dict/README.md",
          "share/applications/tessary.desktop", "share/mime/packages/tessary.xml",
          "share/metainfo/org.tessary.Tessary.metainfo.xml", "share/icons/hicolor/scalable/apps/tessary.svg",
          "share/icons/hicolor/48x48/apps/tessary.png", "share/icons/hicolor/128x128/apps/tessary.png",
          "share/icons/hicolor/256x256/apps/tessary.png", "share/man/man1/tessary.1.gz",
          "share/man/man1/tessary-check.1.gz", "share/bash-completion/completions/tessary",
          "share/bash-completion/completions/tessary-check", "share/doc/tessary/copyright"})
        EXPECT_TRUE(QFileInfo(installed(file)).isFile()) << file;
    EXPECT_TRUE(QFileInfo(installed("bin/tessary")).isExecutable());
    EXPECT_FALSE(QDir(installed("share/tessary/docs/html")).isEmpty()) << "the help pages of the error list";
    for (const char* size : {"48x48", "128x128", "256x256"}) {
        const QImage icon(installed(QString("share/icons/hicolor/%1/apps/tessary.png").arg(size)));
        EXPECT_EQ(QString("%1x%2").arg(icon.width()).arg(icon.height()), size);
    }
}

TEST(Installed, HelpAndVersionPrintWithoutADisplay) {
    ProgramRun version = run("bin/tessary", {"--version"}, kNoDisplay);
    EXPECT_EQ(version.exitCode, 0) << version.err.toStdString();
    EXPECT_EQ(version.out, "Tessary 1.2\n");
    ProgramRun help = run("bin/tessary", {"--help"}, kNoDisplay);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.startsWith("Usage: tessary [OPTION]... [FILE[:LINE]]...")) << help.out.toStdString();
    EXPECT_EQ(run("bin/tessary-check", {"--version"}, kNoDisplay).out, "tessary-check 1.2\n");
    ProgramRun wrong = run("bin/tessary", {"--frobnicate"}, {{"QT_QPA_PLATFORM", "offscreen"}});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_TRUE(wrong.err.contains("tessary: unknown option --frobnicate")) << wrong.err.toStdString();
}

TEST(Installed, TheProgramFindsItsDocumentationAndDictionariesBesideItself) {
    const QFileInfo program(installed("bin/tessary"));
    const QcbsMainWindowSharedData shared(program);
    EXPECT_EQ(shared.documentationDirectory(), installed("share/tessary/docs"));
    EXPECT_EQ(shared.helpSearchPaths(), QStringList{installed("share/tessary/docs/html")});
    // A dictionary copied into the installed directory is read.
    ASSERT_TRUE(QFile::copy(TESSARY_SOURCE_DIR "/tests/data/tessary_test.dic",
                            installed("share/tessary/dict/tessary_test.dic")));
    ScopedEnvironment noOthers("TESSARY_DICTIONARIES", QByteArray());
    QcbsDictionaryLoader loader;
    EXPECT_FALSE(loader.load(program.path())->empty());
    EXPECT_TRUE(loader.loaded());
}

TEST(Installed, TheProgramStartsWithAFileAtALineAndTakesTheFilesOfLaterLaunches) {
    QTemporaryDir home;
    const QString runtime = home.filePath("run");
    ASSERT_TRUE(QDir().mkpath(runtime));
    ASSERT_EQ(::chmod(QFile::encodeName(runtime).constData(), 0700), 0);
    const QString prefs = home.filePath("prefs");
    QFile cif(home.filePath("quartz.cif"));
    ASSERT_TRUE(cif.open(QIODevice::WriteOnly));
    cif.write("data_quartz\n_cell_length_a 4.9134\n_cell_length_c 5.4052\n");
    cif.close();
    const QList<QPair<QString, QString>> environment = {
        {"QT_QPA_PLATFORM", "offscreen"}, {"XDG_RUNTIME_DIR", runtime}, {"TESSARYPREFS", prefs}};

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : environment) env.insert(name, value);
    QProcess first;
    first.setProcessEnvironment(env);
    first.start(installed("bin/tessary"), {cif.fileName() + ":2"});
    ASSERT_TRUE(first.waitForStarted(10000));
    // The program listens once it runs; its socket is where this user's is.
    QString socket;
    {
        ScopedEnvironment xdg("XDG_RUNTIME_DIR", runtime.toUtf8());
        ScopedEnvironment settings("TESSARYPREFS", prefs.toUtf8());
        socket = QcbsInstanceSocket::defaultPath("Tessary");
    }
    ASSERT_TRUE(
        waitUntil([&] { return QFileInfo::exists(socket) || first.state() == QProcess::NotRunning; }, 30000));
    ASSERT_EQ(first.state(), QProcess::Running) << first.readAllStandardError().toStdString();
    // A later launch hands its file over and ends at once.
    const ProgramRun later = run("bin/tessary", {cif.fileName() + ":3"}, environment);
    EXPECT_EQ(later.exitCode, 0) << later.err.toStdString();
    EXPECT_EQ(first.state(), QProcess::Running) << "the first program opened both files and runs on";
    first.kill();
    first.waitForFinished();
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir prefs;
    qputenv("TESSARYPREFS", prefs.path().toUtf8());
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    ::testing::AddGlobalTestEnvironment(new InstalledTree);
    return RUN_ALL_TESTS();
}
