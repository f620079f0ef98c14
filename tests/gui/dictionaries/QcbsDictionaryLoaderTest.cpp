// SPDX-License-Identifier: GPL-3.0-or-later
// Finding and reading the dictionary files, and when the search runs again.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include "DictionaryTestSupport.hpp"
#include "GuiTestSupport.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"

namespace {

// A program three levels down a fresh tree, so that all five dictionary
// directories beside it lie inside the tree.
class DictionaryLoader : public ::testing::Test {
protected:
    // A file's path in the tree, its directory made.
    QString path(const QString& relative) {
        const QString full = root_.filePath(relative);
        QDir().mkpath(QFileInfo(full).path());
        return full;
    }
    QString program() const { return root_.filePath("a/b/bin"); }
    // Every message the loader sent, its flag checked to be false.
    QStringList messages() {
        QStringList texts;
        for (const QList<QVariant>& call : spy_) {
            EXPECT_FALSE(call.at(1).toBool());
            texts << call.at(0).toString();
        }
        spy_.clear();
        return texts;
    }
    static QStringList names(const THandle<CifDictionaryPool>& pool) {
        QStringList list;
        for (const auto& dictionary : *pool) list << QString::fromStdString(dictionary->descriptor().name);
        return list;
    }

    QTemporaryDir root_;
    QcbsDictionaryLoader loader_;
    QSignalSpy spy_{&loader_, &QcbsDictionaryLoader::outputMessageRequest};
};

TEST_F(DictionaryLoader,
       ReadsTheNamedThenTheProgramsDirectoriesEachOnceAndTheirFilesInNameOrderIgnoringCase) {
    const QString named = root_.filePath("elsewhere");
    // The program's own directory named again is still read once.
    ScopedEnvironment environment(
        QcbsDictionaryLoader::environmentVariable(),
        (named + "::" + root_.filePath("missing") + ":" + program() + "/./dict/").toUtf8());
    writeDictionary(path("elsewhere/z.dic"), "z_dict", "1");
    writeDictionary(path("a/b/bin/dict/B.dic"), "B_dict", "1");
    writeDictionary(path("a/b/bin/dict/a.dic"), "a_dict", "1");
    writeDictionary(path("a/b/bin/dict/notes.txt"), "not_read", "1");
    writeDictionary(path("a/dict/c.dic"), "c_dict", "1");

    const THandle<CifDictionaryPool> pool = loader_.load(program());
    EXPECT_TRUE(loader_.loaded());
    EXPECT_EQ(names(pool), (QStringList{"z_dict", "a_dict", "B_dict", "c_dict"}));
    EXPECT_EQ(messages(), (QStringList{"Loaded dictionary: " + named + "/z.dic",
                                       "Loaded dictionary: " + path("a/b/bin/dict/a.dic"),
                                       "Loaded dictionary: " + path("a/b/bin/dict/B.dic"),
                                       "Loaded dictionary: " + path("a/dict/c.dic")}));
    QStringList expected{named, root_.filePath("missing")};
    for (const char* relative : {"a/b/bin/dict", "a/b/share/tessary/dict", "a/dict", "a/b/Resources/dict",
                                 "libCif/dictionaries", "a/libCif/dictionaries"})
        expected << root_.filePath(relative);
    EXPECT_EQ(QcbsDictionaryLoader::searchDirectories(program()), expected);
}

TEST_F(DictionaryLoader, UntilADictionaryIsReadCleanlyEveryCallSearchesAgainThenNewFilesWaitForTheNextStart) {
    ScopedEnvironment noEnvironment(QcbsDictionaryLoader::environmentVariable(), QByteArray());
    EXPECT_TRUE(loader_.load(program())->empty());
    EXPECT_FALSE(loader_.loaded());
    EXPECT_TRUE(messages().isEmpty());

    // A dictionary with errors is reported line by line and left out.
    QFile broken(path("a/b/bin/dict/broken.dic"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("data_nothing_here\n    _some_item 'unterminated\n");
    broken.close();
    EXPECT_TRUE(loader_.load(program())->empty());
    EXPECT_FALSE(loader_.loaded());
    ASSERT_FALSE(loader_.errors()->empty());
    QStringList expected{"Errors loading dictionary: " + broken.fileName()};
    for (const CifError& error : *loader_.errors())
        expected << QString::fromStdString(error.complete_message());
    EXPECT_EQ(messages(), expected);

    writeDictionary(path("a/dict/good.dic"), "good", "1");
    const THandle<CifDictionaryPool> pool = loader_.load(program());
    EXPECT_EQ(names(pool), QStringList{"good"});
    EXPECT_TRUE(loader_.loaded());
    EXPECT_EQ(messages().last(), "Loaded dictionary: " + path("a/dict/good.dic"));

    writeDictionary(path("a/b/bin/dict/later.dic"), "later", "1");
    EXPECT_TRUE(loader_.load(program()) == pool);
    EXPECT_EQ(names(pool), QStringList{"good"});
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(DictionaryLoader, ADirectoryAddedInTheSettingsIsSearchedOnceByTheNextLoadEvenAfterTheFirst) {
    ScopedPrefsDir prefs;
    ScopedEnvironment noEnvironment(QcbsDictionaryLoader::environmentVariable(), QByteArray());
    writeDictionary(path("a/b/bin/dict/first.dic"), "first", "1");
    const THandle<CifDictionaryPool> pool = loader_.load(program());
    EXPECT_EQ(loader_.fileName(*pool->begin()), path("a/b/bin/dict/first.dic"));
    messages();

    const QString added = root_.filePath("mine");
    writeDictionary(path("mine/own.dic"), "own", "2");
    QcbsDictionaryLoader::setAddedDirectories({added});
    EXPECT_EQ(QcbsDictionaryLoader::addedDirectories(), QStringList{added});
    // Searched after the named directories, before the program's.
    EXPECT_EQ(QcbsDictionaryLoader::searchDirectories(program()).first(), added);
    EXPECT_TRUE(loader_.load(program()) == pool);
    EXPECT_EQ(names(pool), (QStringList{"first", "own"}));
    EXPECT_EQ(messages(), QStringList{"Loaded dictionary: " + path("mine/own.dic")});
    EXPECT_EQ(loader_.fileName(*(pool->begin() + 1)), path("mine/own.dic"));

    // Read once: a later file there waits for the next start, like any other.
    writeDictionary(path("mine/later.dic"), "later", "1");
    loader_.load(program());
    EXPECT_EQ(names(pool), (QStringList{"first", "own"}));
    EXPECT_TRUE(messages().isEmpty());
}

}  // namespace
