// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString Includes = QStringLiteral("check_includes");
const QString Style = QStringLiteral("check_style");
const QByteArray Head = "// SPDX-License-Identifier: GPL-3.0-or-later\n\n"; // two lines

struct File {
    const char *name;
    QByteArray text; ///< below the head
};

/** A file in every folder, each including what it may. */
const QList<File> CleanTree {
    { "include/player.h", "/** One line. */\nint a;\n" },
    { "include/sigwatch.h", "int a;\n" },
    { "src/player.cpp", "#include \"player.h\"\n" },
    { "qtmqtt/include/QtMqtt/QMqttClient", "" },
    { "qtmqtt/src/client.cpp", "#include <QMqttClient>\n" },
    { "simulator/main.cpp", "#include \"sigwatch.h\"\n#include \"simulator/scenario/action.h\"\n" },
    { "simulator/options.h", "/**\n * Two\n * lines.\n */\nint a;\n" },
    { "simulator/http/server.h", "int a;\n" },
    { "simulator/house/library.h", "#include <QMqttClient>\n" },
    { "simulator/services/state.h", "#include \"simulator/house/library.h\"\n" },
    { "simulator/scenario/action.h", "#include \"simulator/services/state.h\"\n" },
    { "testkit/appliance.h", "#include \"testkit/services/broker.h\"\n" },
    { "testkit/waiting.h", "int a;\n" },
    { "testkit/probe/probe.h", "#include \"testkit/waiting.h\"\n" },
    { "testkit/process/process.h", "#include \"testkit/probe/probe.h\"\n" },
    { "testkit/services/broker.h", "#include \"testkit/process/process.h\"\n" },
    { "testkit/machine/panel.h", "#include \"testkit/process/process.h\"\n" },
    { "fuzz/fuzz_zones.cpp", "#include \"player.h\"\n" },
    { "bench/main.cpp", "#include \"testkit/appliance.h\"\n" },
    { "tests/unit/helper.h", "#include \"player.h\"\n" },
    { "tests/unit/tst_two_words.cpp", "#include \"helper.h\"\n\nclass TestTwoWords;\n" },
    { "resources.qrc",
        "<file>qml/main.qml</file>\n<file>qml/components/Theme.qml</file>\n"
        "<file>qml/components/format.js</file>\n" },
    { "qml/main.qml", "Item { visible: a === b; color: Theme.text }\n" },
    { "qml/components/Theme.qml", "Item { property color text: \"white\" }\n" },
    { "qml/components/format.js", "// a == b\n" },
    { "docs/screens.md", "![](pictures/player.png)\n" },
    { "docs/pictures/player.png", "" },
    { "README.md", "VELUNOR_TOUCHUI_SIZE\n" },
    { "debian/velunor-touchui.default", "#VELUNOR_TOUCHUI_SIZE=1\n" },
    { "packaging/man/velunor-touchui.8", "VELUNOR_TOUCHUI_SIZES\n" },
};

} // namespace

/** What scripts/check_includes and scripts/check_style find in a tree with one fault. */
class TestChecks : public QObject {
    Q_OBJECT

private slots:
    void init();

    void acceptsACleanTree_data();
    void acceptsACleanTree();
    void namesTheFault_data();
    void namesTheFault();

private:
    void write(const QString &name, const QByteArray &text) const;
    /** Runs the check in the tree; returns what it says, without the last line feed. */
    QString run(const QString &check);

    std::unique_ptr<QTemporaryDir> m_tree;
    QProcess m_process;
};

void TestChecks::init()
{
    m_tree = std::make_unique<QTemporaryDir>();
    QVERIFY(m_tree->isValid());
    QVERIFY(QFile::copy(QStringLiteral(TOUCHUI_CHECKOUT "/.clang-format"),
        m_tree->filePath(QStringLiteral(".clang-format"))));
    for (const File &file : CleanTree)
        write(QString::fromLatin1(file.name), Head + file.text);
}

void TestChecks::write(const QString &name, const QByteArray &text) const
{
    const QFileInfo place(m_tree->filePath(name));
    QVERIFY(QDir().mkpath(place.path()));
    QFile file(place.filePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), static_cast<qint64>(text.size()));
}

QString TestChecks::run(const QString &check)
{
    m_process.start(QStringLiteral(TOUCHUI_CHECKOUT "/scripts/") + check, { m_tree->path() });
    if (!m_process.waitForFinished())
        QTest::qFail("the check does not end", __FILE__, __LINE__);
    return QString::fromUtf8(m_process.readAllStandardOutput() + m_process.readAllStandardError())
        .trimmed();
}

void TestChecks::acceptsACleanTree_data()
{
    QTest::addColumn<QString>("check");
    QTest::newRow("includes") << Includes;
    QTest::newRow("style") << Style;
}

void TestChecks::acceptsACleanTree()
{
    QFETCH(QString, check);
    QCOMPARE(run(check), QString());
    QCOMPARE(m_process.exitCode(), 0);
}

void TestChecks::namesTheFault_data()
{
    QTest::addColumn<QString>("check");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("finding");

    const auto row = [](const char *name, const QString &check, const char *file,
                         const QByteArray &text, const QString &finding) {
        QTest::newRow(name) << check << QString::fromLatin1(file) << text << finding;
    };
    const auto include = [&](const QByteArray &from, const QByteArray &name, const char *to) {
        const QByteArray line = "#include " + name;
        const QByteArray folder = from.left(from.lastIndexOf('/'));
        row(from + ": " + line, Includes, from, Head + line + '\n',
            from + ":3: " + folder + " may not include " + to);
    };
    include("src/fault.cpp", "\"testkit/waiting.h\"", "testkit/waiting.h");
    include("src/fault.cpp", "<testkit/waiting.h>", "testkit/waiting.h");
    include("src/fault.cpp", "\"simulator/options.h\"", "simulator/options.h");
    include("include/fault.h", "\"testkit/waiting.h\"", "testkit/waiting.h");
    include("qtmqtt/fault.h", "\"player.h\"", "include/player.h");
    include("simulator/fault.h", "\"player.h\"", "include/player.h");
    include("simulator/fault.h", "\"testkit/waiting.h\"", "testkit/waiting.h");
    include("simulator/http/fault.h", "\"simulator/house/library.h\"", "simulator/house/library.h");
    include(
        "simulator/house/fault.h", "\"simulator/services/state.h\"", "simulator/services/state.h");
    include("simulator/house/fault.h", "\"../services/state.h\"", "simulator/services/state.h");
    include("simulator/house/fault.h", "\"sigwatch.h\"", "include/sigwatch.h");
    include("simulator/services/fault.h", "\"simulator/scenario/action.h\"",
        "simulator/scenario/action.h");
    include("simulator/scenario/fault.h", "\"simulator/options.h\"", "simulator/options.h");
    include("testkit/fault.h", "\"player.h\"", "include/player.h");
    include("testkit/fault.h", "\"helper.h\"", "tests/unit/helper.h");
    include("testkit/fault.h", "\"tests/unit/helper.h\"", "tests/unit/helper.h");
    include("testkit/fault.h", "\"simulator/options.h\"", "simulator/options.h");
    include("testkit/fault.h", "\"QMqttClient\"", "qtmqtt/include/QtMqtt/QMqttClient");
    include("testkit/probe/fault.h", "\"testkit/process/process.h\"", "testkit/process/process.h");
    include(
        "testkit/process/fault.h", "\"testkit/services/broker.h\"", "testkit/services/broker.h");
    include("testkit/services/fault.h", "\"testkit/appliance.h\"", "testkit/appliance.h");
    include(
        "testkit/machine/fault.h", "\"testkit/services/broker.h\"", "testkit/services/broker.h");
    include("fuzz/fault.h", "\"testkit/waiting.h\"", "testkit/waiting.h");
    include("bench/fault.h", "\"player.h\"", "include/player.h");
    include("bench/fault.h", "\"tests/unit/helper.h\"", "tests/unit/helper.h");
    row("include with blanks", Includes, "src/fault.cpp",
        Head + "  #  include \"testkit/waiting.h\"\n",
        "src/fault.cpp:3: src may not include testkit/waiting.h");

    const auto style
        = [&](const char *name, const char *file, const QByteArray &text,
              const QByteArray &finding) { row(name, Style, file, Head + text, file + finding); };
    row("no licence", Style, "src/player.cpp", "int a;\n", "src/player.cpp:1: no licence line");
    const char *const noClass = ":1: no class Test<Name> of the file's name";
    style("test without a class", "tests/unit/tst_fault.cpp", "int a;\n", noClass);
    style("test class that is not in the first column", "tests/unit/tst_fault.cpp",
        "// class TestFault\n", noClass);
    const char *const notItsOwn = ":3: TestHelper is not called like a test program that it is in";
    style("second test class", "tests/unit/tst_two_words.cpp",
        "class TestHelper;\nclass TestTwoWords;\n", notItsOwn);
    style("helper called like a test", "tests/unit/fault.h", "class TestHelper;\n", notItsOwn);
    style("helper beside its test", "tests/unit/testhelper.cpp", "struct TestHelper;\n", notItsOwn);

    const char *const comment = ":3: a comment of several lines begins below its /**";
    style("end of a comment by itself", "src/player.cpp", "/** One line.\n */\n", comment);
    style("comment that goes on", "include/player.h", "/** Two\n * lines. */\n", comment);
    style("comment of the scene", "qml/main.qml", "    /** Two\n     *  lines. */\n", comment);

    const char *const colour = ":3: a colour or font family belongs into Theme.qml";
    for (const char *text :
        { "color: \"#fff\"", "color: '#1a2B3c4D'", "color: \"red\"",
            "color: 'LightGoldenRodYellow'", "color: \"transparent\"", "color: Qt.rgba(1, 1, 1, 1)",
            "color: Qt.hsla (0, 0, 0, 1)", "font.family: \"Noto Sans\"" })
        style(text, "qml/main.qml", QByteArray(text) + '\n', colour);
    style("colour in a script", "qml/components/format.js", "return \"grey\"\n", colour);

    const char *const equality = ":3: use === and !==";
    style("loose equality", "qml/main.qml", "visible: a == b\n", equality);
    style("loose inequality", "qml/components/format.js", "return a != b\n", equality);
    style("layout", "src/player.cpp", "int a  = 1;\n", ":3: not laid out by .clang-format");

    row("variable that the manual does not tell of", Style, "src/player.cpp",
        Head + "const char *const size = \"VELUNOR_TOUCHUI_SIZE\";\n",
        "packaging/man/velunor-touchui.8: does not tell of VELUNOR_TOUCHUI_SIZE");

    const QByteArray listed = Head
        + "<file>qml/main.qml</file>\n<file>qml/components/Theme.qml</file>\n"
          "<file>qml/components/format.js</file>\n";
    row("resource that is not there", Style, "resources.qrc",
        listed + "<file>icons/gone.png</file>\n", "icons/gone.png: not in step with resources.qrc");
    row("resource that is not listed", Style, "qml/New.qml", Head,
        "qml/New.qml: not in step with resources.qrc");
    row("picture that is not there", Style, "docs/screens.md",
        "![](pictures/player.png)\n![](pictures/gone.png)\n",
        "docs/pictures/gone.png: not in step with docs/screens.md");
    row("picture that is not shown", Style, "docs/pictures/new.png", "",
        "docs/pictures/new.png: not in step with docs/screens.md");
}

void TestChecks::namesTheFault()
{
    QFETCH(QString, check);
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    QFETCH(QString, finding);
    write(file, text);
    QCOMPARE(run(check), finding + '\n' + check + QStringLiteral(": 1 findings"));
    QCOMPARE(m_process.exitCode(), 1);
}

QTEST_GUILESS_MAIN(TestChecks)
#include "tst_checks.moc"
