// Reads, evaluations and renderings at once, changed, cancelled and closed at any moment: what still stands
// in the end is what one quiet run gives, and nothing else is left of them.
#include "Classes/Axes/XAxis.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Classes/PlotView/PlotScene.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "support/ProcessCounts.h"
#include "support/Seed.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cstring>
#include <random>

using namespace Qt::StringLiterals;

namespace {

struct IgnoresResults : XExpressionEvaluatorDelegate {
    void progressChangedPercentage(const QString&, float, quint64) override {}
    void expressionEvaluatedData(const QString&, XTable, quint64) override {}
    void expressionFailed(const QString&, const QString&, quint64) override {}
};

/// Bit by bit: a NaN equals itself.
void expectSameTable(const XTable& table, const XTable& expected) {
    ASSERT_TRUE(table && expected);
    ASSERT_EQ(table->rowsNumber(), expected->rowsNumber());
    ASSERT_EQ(table->columnsNumber(), expected->columnsNumber());
    EXPECT_EQ(table->columnNames(), expected->columnNames());
    for (std::uint64_t i = 0; i < table->columnsNumber(); ++i) {
        const auto column = std::as_bytes(table->column(i));
        const auto same = std::as_bytes(expected->column(i));
        ASSERT_EQ(column.size(), same.size());
        EXPECT_EQ(std::memcmp(column.data(), same.data(), same.size()), 0) << "column " << i;
    }
}

class CancelStorm : public testing::Test {
  protected:
    CancelStorm() {
        XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
        for (const int rows : {1'000, 20'000, 60'000}) {
            QByteArray text("time,left,right\n");
            for (int row = 0; row < rows; ++row)
                text +=
                    QString::asprintf("%d,%.3f,%d\n", row, std::sin(row * 0.01) * rows, row % 997).toUtf8();
            paths += folder.write(QString::number(rows) + u".csv"_qs, text);
        }
    }

    unsigned below(unsigned bound) { return static_cast<unsigned>(engine() % bound); }

    // --- The document

    void open() {
        document = std::make_unique<MoxDocument>();
        document->finishOpening();
        scene = std::make_unique<PlotScene>();
        scene->setBounds({400, 300});
        scene->setRenderGrace(std::chrono::milliseconds(0));
        for (int i = 0; i < 3; ++i)
            addSource();
        for (int i = 0; i < 5; ++i)
            addCurve();
    }
    /// Whatever runs, in any order.
    void close() {
        const unsigned how = below(3);
        if (how == 0)
            scene.reset();
        if (how == 1)
            document->close();
        document.reset();
        scene.reset();
    }
    std::span<const XDataSource> sources() const {
        return std::as_const(*document).dataSourcesManager().dataSources();
    }
    XPTextFile& anySource() {
        return dynamic_cast<XPTextFile&>(*sources()[below(static_cast<unsigned>(sources().size()))]);
    }
    XCurve& anyCurve() {
        return *document->curves()[below(static_cast<unsigned>(document->curves().size()))];
    }

    // --- What happens to it

    void addSource() {
        document->addDatasourceWithSettings(QLatin1String(XPTextFile::identifier),
                                            {{u"Filename"_qs, paths[below(3)]}, {u"DelimiterType"_qs, 1}});
    }
    void addCurve() {
        const XCurveHandle curve = document->addNewCurve();
        curve->setDataSource(sources()[below(static_cast<unsigned>(sources().size()))]);
        changeExpression(*curve);
        scene->setCurves(document->curves());
    }
    void changeExpression(XCurve& curve) {
        const char* const texts[] = {"sin(c1)+c2*0.5", "c1*2", "sqrt(abs(c2))+row", "c3"};
        curve.setX_data_index(static_cast<int>(below(3)));
        curve.setY_data_expression(QString(QLatin1String(texts[below(4)])));
        curve.setY_uses_expression(below(4) != 0);
    }
    void changeSettingsAndRead(XPTextFile& source) {
        source.setFilename(paths[below(3)]);
        source.setSkiplines(static_cast<int>(below(3)));
        source.setEveryNthLine(static_cast<int>(below(4)));
        source.setDelimiterType(static_cast<int>(below(3)));
        source.setExtractColumnNames(source.delimiterType() != 0 && below(2) == 0);
        source.read();
    }
    void changeLooks() {
        for (const XCurveHandle& curve : document->curves())
            curve->setLineWidth(static_cast<int>(1 + below(5)));
    }
    void changeSomethingElse() {
        const auto count = static_cast<unsigned>(document->curves().size());
        switch (below(8)) {
        case 0:
            if (sources().size() < 5)
                addSource();
            break;
        case 1:
            if (sources().size() > 1)
                document->removeDataSourceAtIndex(
                    static_cast<int>(below(static_cast<unsigned>(sources().size()))));
            break;
        case 2:
            if (count < 8)
                addCurve();
            break;
        case 3:
            if (count > 4)
                document->removeCurve(document->curves()[below(count)]);
            scene->setCurves(document->curves());
            break;
        case 4:
            anyCurve().setDataSource(sources()[below(static_cast<unsigned>(sources().size()))]);
            break;
        case 5:
            changeExpression(anyCurve());
            break;
        case 6:
            changeLooks();
            break;
        default:
            scene->autoFitToData = false;
            scene->axisX()->setRangeMinMax(-1.0 * below(500), 1.0 + below(20'000));
        }
    }
    void goOnForAWhile() {
        if (below(2) == 0)
            return QCoreApplication::processEvents();
        unsigned rounds = below(8);
        (void)support::waitUntil([&] { return isIdle() || rounds == 0 || --rounds == 0; });
    }
    bool isIdle() const {
        return !document->isReading() && XExpressionEvaluator::sharedInstance().isIdle() &&
               scene->renderTaskCount() == 0;
    }

    // --- What is left of it

    void settle() {
        if (below(2) == 0)
            scene->fitToData();
        changeLooks();
        scene->requestRenderings();
        goOnForAWhile();
        changeLooks(); // of curves that are being rendered
        ASSERT_TRUE(support::waitUntil([this] { return isIdle() && scene->requestRenderings(); }, 120));
    }
    void expectWhatAQuietRunGives() {
        for (const XDataSource& source : sources()) {
            XPTextFile quiet;
            quiet.setPlist(*source->plist());
            quiet.read();
            ASSERT_TRUE(support::waitUntil([&] { return !quiet.isLoading(); }));
            expectSameTable(source->data(), quiet.data());
        }
        for (const XCurveHandle& curve : document->curves()) {
            const CurveSnapshot snapshot = curve->snapshot();
            if (curve->y_uses_expression() && snapshot.table)
                expectEvaluated(*curve, snapshot);
            // Kept: new data whose evaluation fails leave the curve's picture as it was.
            if (snapshot.rows() == 0 || !curve->yExpressionError().isEmpty())
                continue;
            EXPECT_EQ(curve->renderedImage(),
                      CurveRenderer::renderImage(snapshot, *scene->axisX(), *scene->axisY(), 1, {}));
        }
    }
    static void expectEvaluated(const XCurve& curve, const CurveSnapshot& snapshot) {
        const auto delegate = std::make_shared<IgnoresResults>();
        XExpressionEvaluatorTask quiet(*curve.y_data_expression(), snapshot.table, delegate, 0);
        quiet.main();
        EXPECT_EQ(curve.yExpressionError().isEmpty(), quiet.result() != nullptr);
        if (quiet.result())
            expectSameTable(snapshot.yEvaluated, quiet.result());
    }

    support::ScratchFolder folder;
    QStringList paths;
    std::mt19937_64 engine{support::seed()};
    std::unique_ptr<MoxDocument> document;
    std::unique_ptr<PlotScene> scene; ///< of the document's curves
};

TEST_F(CancelStorm, LeavesWhatAQuietRunGivesAndNothingElse) {
    constexpr std::size_t evaluationsAndRenderingsAtOnce = 8;
    open();
    settle();
    close();
    XExpressionEvaluator::shutDown();
    const support::ProcessCounts before = support::processCounts();
    open();
    std::size_t mostThreads = 0;
    for (int round = 0, count = support::rounds(40); round < count && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        XPTextFile& source = anySource();
        changeSettingsAndRead(source);
        if (below(2) == 0) { // and again as soon as that read has begun
            QCoreApplication::processEvents();
            changeSettingsAndRead(source);
        }
        for (unsigned i = below(5); i > 0; --i)
            changeSomethingElse();
        scene->requestRenderings();
        goOnForAWhile();
        mostThreads = std::max(mostThreads, support::processCounts().threads);
        if (below(10) == 0) {
            settle();
            expectWhatAQuietRunGives();
        }
        if (below(10) == 0) {
            close();
            open();
        }
    }
    settle();
    expectWhatAQuietRunGives();
    close();
    XExpressionEvaluator::shutDown();
    EXPECT_GE(mostThreads, before.threads + evaluationsAndRenderingsAtOnce);
    // The system lists a thread for a moment after it was joined.
    EXPECT_TRUE(support::waitUntil([&] { return support::processCounts() == before; }));
}

} // namespace
