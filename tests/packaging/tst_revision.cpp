// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

namespace {

const QString Cmake = QStringLiteral(TOUCHUI_CMAKE);
const QString SourceTree = QStringLiteral(TOUCHUI_CHECKOUT);
const QString Unknown(40, QLatin1Char('0'));

constexpr int ProcessLimitMs = 60000;

} // namespace

class TestRevision;
using Preparation = std::function<void(TestRevision &)>;
Q_DECLARE_METATYPE(Preparation)

/** Which commit the program names as its own, by where its sources lie. */
class TestRevision : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void checkoutNamesItsCommit();
    void changedCheckoutNamesItsCommit();
    void linkedWorktreeNamesItsOwnCommit();
    void checkoutOfSomebodyElseNamesItsCommit();
    void treeWithoutACommitNamesNone_data();
    void treeWithoutACommitNamesNone();
    void archiveNamesItsCommit();
    void headerIsRewrittenOnlyForAnotherCommit();
    void copyOfTheSourcesCanBeBuilt();

private:
    /** Runs a program in the tree; returns its output.  Fails the test when the program fails. */
    QString run(const QString &program, const QStringList &arguments);
    QString git(const QStringList &arguments);
    /** Makes the tree a checkout with one commit more, whose id is returned. */
    QString commit();
    /** The revision in the header that the script writes for a tree. */
    QString revisionOf(const QString &tree);
    QString header() const { return m_folder->filePath(QStringLiteral("revision.h")); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_tree; // a tree with no more than the script in it
    QProcessEnvironment m_environment;
};

void TestRevision::initTestCase()
{
    QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty(), "git is missing");
}

void TestRevision::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_tree = m_folder->filePath(QStringLiteral("outer/tree"));
    QVERIFY(QDir().mkpath(m_tree + QStringLiteral("/cmake")));
    for (const char *name : { ".gitattributes", "cmake/revision.cmake" }) {
        const QString path = QLatin1Char('/') + QString::fromLatin1(name);
        QVERIFY2(QFile::copy(SourceTree + path, m_tree + path), name);
    }
    // Not the source tree's own, which is filled in when that is an archive.
    QFile named(m_tree + QStringLiteral("/cmake/revision.txt"));
    QVERIFY(named.open(QIODevice::WriteOnly));
    named.write("$Format:%H$\n");
    named.close();
    // Nothing of the machine's or the caller's.
    m_environment = QProcessEnvironment();
    m_environment.insert(QStringLiteral("PATH"), qEnvironmentVariable("PATH"));
    m_environment.insert(QStringLiteral("HOME"), m_folder->path());
    m_environment.insert(QStringLiteral("GIT_CONFIG_NOSYSTEM"), QStringLiteral("1"));
    // A checkout around the temporary folder is not looked for.
    m_environment.insert(QStringLiteral("GIT_CEILING_DIRECTORIES"), m_folder->path());
    for (const char *role : { "AUTHOR", "COMMITTER" }) {
        const QString prefix = QStringLiteral("GIT_") + QLatin1String(role);
        m_environment.insert(prefix + QStringLiteral("_NAME"), QStringLiteral("Test"));
        m_environment.insert(prefix + QStringLiteral("_EMAIL"), QStringLiteral("test@localhost"));
    }
}

QString TestRevision::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_tree);
    process.start(program, arguments);
    const bool done = process.waitForFinished(ProcessLimitMs)
        && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!done) {
        const QByteArray said = process.readAllStandardOutput() + process.readAllStandardError();
        const QString command = program + QLatin1Char(' ') + arguments.join(QLatin1Char(' '));
        QTest::qFail((command.toLocal8Bit() + ": " + said).constData(), __FILE__, __LINE__);
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

QString TestRevision::git(const QStringList &arguments)
{
    return run(QStringLiteral("git"), arguments);
}

QString TestRevision::commit()
{
    git({ QStringLiteral("init"), QStringLiteral("--quiet") });
    git({ QStringLiteral("add"), QStringLiteral("--all") });
    git({ QStringLiteral("commit"), QStringLiteral("--quiet"), QStringLiteral("--allow-empty"),
        QStringLiteral("--message=A commit") });
    return git({ QStringLiteral("rev-parse"), QStringLiteral("HEAD") });
}

QString TestRevision::revisionOf(const QString &tree)
{
    run(Cmake,
        { QStringLiteral("-DSOURCE_DIR=") + tree, QStringLiteral("-DOUTPUT=") + header(),
            QStringLiteral("-P"), tree + QStringLiteral("/cmake/revision.cmake") });
    QFile file(header());
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("there is no header");
    const QRegularExpression line(
        QStringLiteral("^constexpr char BuildRevision\\[\\] = \"([^\"]*)\";$"),
        QRegularExpression::MultilineOption);
    return line.match(QString::fromLocal8Bit(file.readAll())).captured(1);
}

void TestRevision::checkoutNamesItsCommit()
{
    const QString first = commit();
    QCOMPARE(first.size(), 40);
    QCOMPARE(revisionOf(m_tree), first);
    const QString second = commit();
    QVERIFY(second != first);
    QCOMPARE(revisionOf(m_tree), second);
    git({ QStringLiteral("checkout"), QStringLiteral("--quiet"), first });
    QCOMPARE(revisionOf(m_tree), first);
}

void TestRevision::changedCheckoutNamesItsCommit()
{
    const QString id = commit();
    QFile added(m_tree + QStringLiteral("/added"));
    QVERIFY(added.open(QIODevice::WriteOnly));
    QCOMPARE(revisionOf(m_tree), id);
}

void TestRevision::linkedWorktreeNamesItsOwnCommit()
{
    const QString first = commit();
    const QString linked = m_folder->filePath(QStringLiteral("linked"));
    git({ QStringLiteral("worktree"), QStringLiteral("add"), QStringLiteral("--quiet"),
        QStringLiteral("--detach"), linked });
    QVERIFY(commit() != first);
    QCOMPARE(revisionOf(linked), first);
}

void TestRevision::checkoutOfSomebodyElseNamesItsCommit()
{
    const QString id = commit();
    m_environment.insert(QStringLiteral("GIT_TEST_ASSUME_DIFFERENT_OWNER"), QStringLiteral("1"));
    QCOMPARE(revisionOf(m_tree), id);
}

void TestRevision::treeWithoutACommitNamesNone_data()
{
    QTest::addColumn<Preparation>("prepare");
    const auto row
        = [](const char *name, const Preparation &prepare) { QTest::newRow(name) << prepare; };
    row("no checkout", [](TestRevision &) {});
    row("no commit yet", [](TestRevision &test) { test.git({ QStringLiteral("init") }); });
    row("inside another checkout", [](TestRevision &test) {
        const QString tree = test.m_tree;
        test.m_tree = QFileInfo(tree).path();
        test.commit();
        test.m_tree = tree;
    });
    row("git is not installed", [](TestRevision &test) {
        test.commit();
        test.m_environment.insert(QStringLiteral("PATH"), test.m_folder->path());
    });
    row("damaged checkout", [](TestRevision &test) {
        test.commit();
        QFile::remove(test.m_tree + QStringLiteral("/.git/HEAD"));
    });
}

void TestRevision::treeWithoutACommitNamesNone()
{
    QFETCH(Preparation, prepare);
    prepare(*this);
    QCOMPARE(revisionOf(m_tree), Unknown);
}

void TestRevision::archiveNamesItsCommit()
{
    const QString id = commit();
    const QString archive = m_folder->filePath(QStringLiteral("archive.tar"));
    git({ QStringLiteral("archive"), QStringLiteral("--output=") + archive,
        QStringLiteral("HEAD") });
    const QString unpacked = m_folder->filePath(QStringLiteral("outer/unpacked"));
    QVERIFY(QDir().mkpath(unpacked));
    run(QStringLiteral("tar"), { QStringLiteral("-xf"), archive, QStringLiteral("-C"), unpacked });
    QCOMPARE(revisionOf(unpacked), id);
    // Once it is a checkout itself, what counts is the commit it is at.
    m_tree = unpacked;
    QCOMPARE(revisionOf(unpacked), id);
    const QString own = commit();
    QVERIFY(own != id);
    QCOMPARE(revisionOf(unpacked), own);
}

void TestRevision::headerIsRewrittenOnlyForAnotherCommit()
{
    commit();
    revisionOf(m_tree);
    QFile file(header());
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1000);
    QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    file.close();
    revisionOf(m_tree);
    QCOMPARE(QFileInfo(header()).lastModified(), longAgo);
    commit();
    revisionOf(m_tree);
    QVERIFY(QFileInfo(header()).lastModified() != longAgo);
}

void TestRevision::copyOfTheSourcesCanBeBuilt()
{
    const QString copy = m_folder->filePath(QStringLiteral("outer/copy"));
    QVERIFY(QDir().mkpath(copy));
    const QString archive = m_folder->filePath(QStringLiteral("archive.tar"));
    run(QStringLiteral("tar"),
        { QStringLiteral("-C"), SourceTree, QStringLiteral("--exclude=./.git"),
            QStringLiteral("--exclude=./build"), QStringLiteral("--exclude=./build-*"),
            QStringLiteral("-cf"), archive, QStringLiteral(".") });
    run(QStringLiteral("tar"), { QStringLiteral("-xf"), archive, QStringLiteral("-C"), copy });
    // All that a checkout and a copy differ in is decided when it is configured, and in the header.
    const QString build = m_folder->filePath(QStringLiteral("build"));
    run(Cmake,
        { QStringLiteral("-S"), copy, QStringLiteral("-B"), build,
            QStringLiteral("-DTOUCHUI_TESTS=OFF") });
    run(Cmake,
        { QStringLiteral("--build"), build, QStringLiteral("--target"),
            QStringLiteral("touchui_revision_header") });
    QFile named(copy + QStringLiteral("/cmake/revision.txt"));
    QVERIFY(named.open(QIODevice::ReadOnly));
    const QByteArray archived = named.readAll().trimmed();
    const QByteArray expected = archived.startsWith('$') ? Unknown.toLatin1() : archived;
    QFile file(build + QStringLiteral("/revision/revision.h"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains('"' + expected + '"'));
}

QTEST_GUILESS_MAIN(TestRevision)
#include "tst_revision.moc"
