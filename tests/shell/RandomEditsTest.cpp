// Documents after edits by chance: undo against a model of plain copies, and their files.
#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "Platform/Core/PropertyList.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <algorithm>
#include <bit>
#include <cmath>
#include <deque>
#include <map>
#include <memory>
#include <random>

using namespace Qt::StringLiterals;

namespace {

class RandomEdits {
  public:
    explicit RandomEdits(MoxDocument& document, unsigned seed) : m_document(document), m_engine(seed) {}

    unsigned below(unsigned bound) { return static_cast<unsigned>(m_engine() % bound); }

    /// One edit that is an undo step. Returns whether there was something to edit.
    bool edit() {
        switch (below(10)) {
        case 0:
            return below(3) == 0 && addSource();
        case 1:
            return below(3) == 0 && removeSource();
        case 2:
            return !sources().empty() && m_document.curves().size() < 8 &&
                   m_document.addNewCurve() != nullptr;
        case 3:
            if (m_document.curves().isEmpty() || below(2) == 0)
                return false;
            m_document.removeCurve(anyCurve());
            return true;
        default:
            return editCurve();
        }
    }
    /// What makes no undo step.
    void editTheRest() {
        for (int i = 0; i < 10; ++i)
            editOption();
        m_document.setLegendAlignment(static_cast<int>(m_engine()));
        m_document.setLegendMargins({std::ldexp(below(1000), -2), std::ldexp(below(1000), -3)});
        m_document.setShowLegend(below(2) == 1);
        for (const XCurveHandle& curve : m_document.curves()) {
            curve->setPointsize_data_index(static_cast<int>(below(4)));
            if (below(2) == 0)
                continue;
            curve->setPointsize_data_expression(text());
            curve->setPointsize_uses_expression(true);
        }
    }

  private:
    const std::vector<XDataSource>& sources() { return m_sources = listOfSources(); }
    std::vector<XDataSource> listOfSources() const {
        const auto& list = m_document.dataSourcesManager().dataSources();
        return {list.begin(), list.end()};
    }
    XCurveHandle anyCurve() {
        return m_document.curves()[below(static_cast<unsigned>(m_document.curves().size()))];
    }
    bool addSource() {
        if (sources().size() > 4)
            return false;
        const bool isFile = below(2) == 0;
        m_document.addDatasourceWithSettings(
            QLatin1String(isFile ? XPTextFile::identifier : XPTextEditor::identifier),
            {{isFile ? u"Filename"_qs : u"Text"_qs, isFile ? u"/nowhere/"_qs + text() : text()}});
        return true;
    }
    bool removeSource() {
        if (sources().empty())
            return false;
        m_document.removeDataSourceAtIndex(static_cast<int>(below(static_cast<unsigned>(m_sources.size()))));
        return true;
    }
    void editOption() {
        const auto& kinds = XAxisManager::sharedManager().axisTypes();
        const XAxisInfo* kind = &kinds[below(static_cast<unsigned>(kinds.size()))];
        const auto number = below(3) == 0 ? std::nullopt : std::optional(real());
        using Document = MoxDocument;
        static constexpr void (Document::*limits[])(std::optional<double>) = {
            &Document::setAxisMinX, &Document::setAxisMaxX, &Document::setAxisMinY, &Document::setAxisMaxY};
        static constexpr void (Document::*titles[])(std::optional<QString>) = {
            &Document::setPlotAreaTitle, &Document::setAxisTitleX, &Document::setAxisTitleY};
        static constexpr void (Document::*switches[])(bool) = {
            &Document::setShowOriginX, &Document::setShowOriginY, &Document::setShowHorizontalLines,
            &Document::setShowVerticalLines};
        switch (below(5)) {
        case 0:
            (m_document.*limits[below(4)])(number);
            break;
        case 1:
            (m_document.*titles[below(3)])(text());
            break;
        case 2:
            (m_document.*switches[below(4)])(below(2) == 1);
            break;
        case 3:
            m_document.setAxisX_type(kind);
            break;
        default:
            m_document.setAxisY_type(kind);
        }
    }
    bool editCurve() {
        if (m_document.curves().isEmpty())
            return false;
        const XCurveHandle curve = anyCurve();
        const auto& shapes = XPointsLibrary::sharedLibrary().pointDescriptions();
        switch (below(11)) {
        case 0:
            curve->setColor({channel(), channel(), channel(), channel()});
            break;
        case 1:
            curve->setColorAlpha(static_cast<float>(channel()));
            break;
        case 2:
            curve->setIsVisible(below(2) == 1);
            break;
        case 3:
            curve->setLineWidth(static_cast<int>(below(20)));
            break;
        case 4:
            curve->setTicksShape(&shapes[below(static_cast<unsigned>(shapes.size()))]);
            break;
        case 5:
            curve->setTicksSize(static_cast<int>(below(20)));
            break;
        case 6:
            curve->setTitle(text());
            break;
        case 7:
            curve->setX_data_index(static_cast<int>(below(5)));
            break;
        case 8:
            curve->setY_data_expression(text());
            break;
        case 9:
            if (!curve->y_data_expression())
                return false;
            curve->setY_uses_expression(below(2) == 1);
            break;
        default:
            if (sources().empty())
                return false;
            curve->setDataSource(m_sources[below(static_cast<unsigned>(m_sources.size()))]);
        }
        return true;
    }
    QString text() {
        static const char16_t letters[] = u"a<&>\"' \u00e9\u65e5\t\n]]>\U0001f600";
        QString made;
        for (unsigned i = below(8); i > 0; --i)
            made += QStringView(letters).mid(below(9), 1);
        return made;
    }
    double real() {
        const double any = std::bit_cast<double>(m_engine());
        return std::isfinite(any) ? any : -0.0;
    }
    double channel() { return std::uniform_real_distribution(0.0, 1.0)(m_engine); }

    MoxDocument& m_document;
    std::mt19937_64 m_engine;
    std::vector<XDataSource> m_sources;
};

int observersOf(const Observable& object) {
    struct Opened : Observable {
        using Observable::receivers;
    };
    return (object.*&Opened::receivers)(SIGNAL(keyChanged(KeyChange)));
}

/// Watches over the observers of whatever was in a document: those of its place, and no others.
class Observers {
  public:
    explicit Observers(const MoxDocument& document) : m_document(document) {}

    /// Empty when they are right, else what an object has in place of what it should have.
    std::string fault() {
        std::map<const Observable*, int> expected;
        const auto take = [&](const std::shared_ptr<Observable>& object, int observers) {
            m_seen.insert_or_assign(object.get(), object);
            expected[object.get()] = observers;
        };
        for (const XCurveHandle& curve : m_document.curves())
            take(curve, 2); // itself, and for undo
        for (const XDataSource& source : m_document.dataSourcesManager().dataSources())
            take(source, 3); // for undo, for the edited mark, and for the list of titles
        std::erase_if(m_seen, [](const auto& entry) { return entry.second.expired(); });
        for (const auto& [address, weak] : m_seen) {
            const std::shared_ptr<Observable> object = weak.lock();
            const int outside = dynamic_cast<const XCurve*>(object.get()) != nullptr ? 1 : 0;
            const auto found = expected.find(address);
            const int right = found == expected.end() ? outside : found->second;
            if (object && observersOf(*object) != right)
                return std::to_string(observersOf(*object)) + " observers of a " +
                       object->metaObject()->className() + " in place of " + std::to_string(right);
        }
        return {};
    }
    /// Whether nothing is left of them.
    bool areAllGone() const {
        return std::ranges::all_of(m_seen, [](const auto& entry) { return entry.second.expired(); });
    }

  private:
    const MoxDocument& m_document;
    std::map<const Observable*, std::weak_ptr<Observable>> m_seen;
};

class RandomEditsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()}); }
};

TEST_F(RandomEditsTest, UndoAndRedoAreThoseOfAModelWithTenLevels) {
    constexpr std::size_t levels = 10;
    MoxDocument document;
    document.finishOpening();
    std::optional<RandomEdits> edits{std::in_place, document, 1};
    Observers observers(document);
    std::deque<QVariantMap> before;
    std::deque<QVariantMap> after;
    QVariantMap now = document.plist();
    UndoManager& undo = document.undoManager();
    for (int i = 0, n = support::rounds(1'000); i < n; ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(undo.canUndo(), !before.empty());
        ASSERT_EQ(undo.canRedo(), !after.empty());
        const unsigned choice = edits->below(4);
        if (choice == 0 && undo.canUndo()) {
            undo.undo();
            after.push_front(std::exchange(now, before.back()));
            before.pop_back();
        } else if (choice == 1 && undo.canRedo()) {
            undo.redo();
            before.push_back(std::exchange(now, after.front()));
            after.pop_front();
        } else if (choice > 1 && edits->edit()) {
            undo.closeTurnGroup();
            before.push_back(std::exchange(now, document.plist()));
            if (before.size() > levels)
                before.pop_front();
            after.clear();
        }
        ASSERT_EQ(document.plist(), now);
        ASSERT_EQ(observers.fault(), "");
    }
    document.close();
    edits.reset();
    EXPECT_TRUE(support::waitUntil([&] { return observers.areAllGone(); }));
}

TEST_F(RandomEditsTest, FilesHoldTheWholeDocumentForUsAndForOthers) {
    const support::ScratchFolder folder;
    const int count = support::rounds(100);
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE(i);
        MoxDocument document;
        document.finishOpening();
        RandomEdits edits(document, static_cast<unsigned>(i));
        for (int k = 0; k < 30; ++k)
            edits.edit();
        edits.editTheRest();
        for (const XCurveHandle& curve : XCurves(document.curves())) // those take no place in the file's map
            if (!curve->dataSource())
                document.removeCurve(curve);
        const QByteArray saved = PropertyList::writeXml(document.plist());
        MoxDocument again;
        again.loadFromPlist(*PropertyList::read(saved).value);
        ASSERT_EQ(PropertyList::writeXml(again.plist()).toStdString(), saved.toStdString());
        ASSERT_EQ(again.plist(), document.plist());
        folder.write(QString::number(i) + u".xml"_qs, saved);
        document.close();
        again.close();
    }
    // An independent reader and writer: what it makes of our files, in either format, is what we read.
    QProcess python;
    python.start(u"python3"_qs, {u"-c"_qs, uR"(
import plistlib, sys
for i in range(int(sys.argv[2])):
    name = f"{sys.argv[1]}/{i}"
    values = plistlib.load(open(name + ".xml", "rb"))
    plistlib.dump(values, open(name + ".again", "wb"))
    plistlib.dump(values, open(name + ".bin", "wb"), fmt=plistlib.FMT_BINARY))"_qs,
                                 folder.path(), QString::number(count)});
    ASSERT_TRUE(python.waitForFinished(600'000));
    ASSERT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    for (int i = 0; i < count; ++i) {
        const auto valueOf = [&](const QString& ending) {
            return *PropertyList::read(support::ScratchFolder::read(folder.path(QString::number(i) + ending)))
                        .value;
        };
        EXPECT_EQ(valueOf(u".again"_qs), valueOf(u".xml"_qs)) << i;
        EXPECT_EQ(valueOf(u".bin"_qs), valueOf(u".xml"_qs)) << i;
    }
}

} // namespace
