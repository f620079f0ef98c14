#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "DictionaryTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"

namespace {

// A program three levels down a fresh tree, so that all five dictionary
// directories beside it lie inside the tree, and no environment directory.
class DictionaryLoader : public ::testing::Test {
protected:
    DictionaryLoader() : noEnvironment_(QcbsDictionaryLoader::environmentVariable(), QByteArray()) {
        QDir(root_.path()).mkpath("a/b/bin");
    }

    QString program() const { return root_.filePath("a/b/bin"); }
    // The directory beside the program (first) and the development tree's (second).
    QString besideProgram() { return made("a/b/bin/dict"); }
    QString developmentTree() { return made("a/dict"); }
    QString made(const QString& relative) {
        QDir(root_.path()).mkpath(relative);
        return root_.filePath(relative);
    }

    // Every message the loader sent, its flag checked to be false.
    static QStringList messages(const QSignalSpy& spy) {
        QStringList texts;
        for (const QList<QVariant>& call : spy) {
            EXPECT_FALSE(call.at(1).toBool());
            texts << call.at(0).toString();
        }
        return texts;
    }

    // The directories a debug log says were searched, in order.
    static QStringList searched(const std::string& log) {
        static const QRegularExpression line("QcbsDictionaryLoader - Searching for dictionaries in: (\\S+)");
        QStringList paths;
        for (const QRegularExpressionMatch& match : line.globalMatch(QString::fromStdString(log)))
            paths << match.captured(1);
        return paths;
    }

    static QStringList names(const THandle<CifDictionaryPool>& pool) {
        QStringList list;
        for (const auto& dictionary : *pool) list << QString::fromStdString(dictionary->descriptor().name);
        return list;
    }

    QTemporaryDir root_;
    ScopedEnvironment noEnvironment_;
    QcbsDictionaryLoader loader_;
    QSignalSpy spy_{&loader_, &QcbsDictionaryLoader::outputMessageRequest};
};

TEST_F(DictionaryLoader, WithNoDictionaryAnywhereEveryCallSearchesAllDirectoriesAgain) {
    ScopedLogCapture log(1);
    const THandle<CifDictionaryPool> first = loader_.load(program());
    EXPECT_TRUE(first->empty());
    EXPECT_FALSE(loader_.loaded());
    EXPECT_EQ(spy_.count(), 0);

    QStringList expected;
    for (const char* relative :
         {"a/b/bin/dict", "a/dict", "a/b/Resources/dict", "libCif/dictionaries", "a/libCif/dictionaries"})
        expected << root_.filePath(relative);
    EXPECT_EQ(searched(log.text()), expected);

    loader_.load(program());
    EXPECT_EQ(searched(log.text()), expected + expected);
}

TEST_F(DictionaryLoader, ReadsEveryDirectoryInTurnAndItsFilesInNameOrderIgnoringCase) {
    const QString named = made("elsewhere");
    ScopedEnvironment environment(QcbsDictionaryLoader::environmentVariable(),
                                  (named + "::" + root_.filePath("missing")).toUtf8());
    writeDictionary(named + "/z.dic", "z_dict", "1");
    writeDictionary(besideProgram() + "/B.dic", "B_dict", "1");
    writeDictionary(besideProgram() + "/a.dic", "a_dict", "1");
    writeDictionary(besideProgram() + "/notes.txt", "not_read", "1");
    writeDictionary(developmentTree() + "/c.dic", "c_dict", "1");

    ScopedLogCapture log(1);
    const THandle<CifDictionaryPool> pool = loader_.load(program());
    EXPECT_TRUE(loader_.loaded());
    EXPECT_EQ(names(pool), (QStringList{"z_dict", "a_dict", "B_dict", "c_dict"}));
    EXPECT_EQ(messages(spy_), (QStringList{"Loaded dictionary: " + named + "/z.dic",
                                           "Loaded dictionary: " + besideProgram() + "/a.dic",
                                           "Loaded dictionary: " + besideProgram() + "/B.dic",
                                           "Loaded dictionary: " + developmentTree() + "/c.dic"}));
    EXPECT_NE(
        log.text().find("QcbsDictionaryLoader - Dictionary found in: " + named.toStdString() + "/z.dic"),
        std::string::npos);
}

TEST_F(DictionaryLoader, ADirectoryNamedTwiceIsReadOnce) {
    ScopedEnvironment environment(QcbsDictionaryLoader::environmentVariable(),
                                  (program() + "/./dict/").toUtf8());
    writeDictionary(besideProgram() + "/core.dic", "core", "1");
    EXPECT_EQ(loader_.load(program())->size(), 1u);
    EXPECT_EQ(spy_.count(), 1);
}

TEST_F(DictionaryLoader, ADictionaryWithErrorsIsReportedLineByLineAndLeftOut) {
    writeBrokenDictionary(besideProgram() + "/broken.dic");
    const THandle<CifDictionaryPool> pool = loader_.load(program());
    EXPECT_TRUE(pool->empty());
    EXPECT_FALSE(loader_.loaded());
    ASSERT_FALSE(loader_.errors()->empty());
    QStringList expected{"Errors loading dictionary: " + besideProgram() + "/broken.dic"};
    for (const CifError& error : *loader_.errors())
        expected << QString::fromStdString(error.complete_message());
    EXPECT_EQ(messages(spy_), expected);

    // Nothing was read cleanly, so the next call searches again and now
    // finds the good dictionary as well.
    spy_.clear();
    writeDictionary(developmentTree() + "/good.dic", "good", "1");
    EXPECT_EQ(names(loader_.load(program())), QStringList{"good"});
    EXPECT_TRUE(loader_.loaded());
    EXPECT_EQ(messages(spy_).first(), expected.first());
    EXPECT_EQ(messages(spy_).last(), "Loaded dictionary: " + developmentTree() + "/good.dic");
}

TEST_F(DictionaryLoader, OnceADictionaryIsReadNewFilesWaitForTheNextStart) {
    writeDictionary(besideProgram() + "/core.dic", "core", "1");
    const THandle<CifDictionaryPool> first = loader_.load(program());
    writeDictionary(besideProgram() + "/later.dic", "later", "1");
    spy_.clear();
    const THandle<CifDictionaryPool> second = loader_.load(program());
    EXPECT_TRUE(first == second);
    EXPECT_EQ(names(second), QStringList{"core"});
    EXPECT_EQ(spy_.count(), 0);
}

}  // namespace
