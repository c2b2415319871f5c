// Reading: 1,000,000 x 6 numbers (62 MB) through the reader, and through plainer ways for comparison.
//
// Run bench_reading; each line's counter is the input that it gets through in a second. `reader/...` is the
// whole road of the program: a file, its thread, 4,096 bytes at a time, conversion, the table, its column
// ranges.
#include "Core/TextToDouble.h"
#include "EmbeddedPlugins/TextFile/XPDataReader.h"
#include "libparsers/csvTokenizing.h"

#include <QFile>
#include <QTemporaryFile>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <future>
#include <random>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t columns = 6;

/// Comma-separated decimals of mostly eight to eleven characters, as instruments write them.
std::string makeText(std::size_t rows) {
    std::mt19937_64 random(42);
    std::string text;
    std::array<char, 64> number{};
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            const double value = (static_cast<double>(random() >> 11U) * 0x1p-53 - 0.5) * 2e4;
            const auto end = std::to_chars(number.data(), number.data() + number.size(), value,
                                           std::chars_format::fixed, static_cast<int>(column) % 3 + 3);
            text.append(number.data(), end.ptr);
            text += column + 1 < columns ? ',' : '\n';
        }
    }
    return text;
}

const std::string& text() {
    static const std::string made = makeText(1'000'000);
    return made;
}

/// A file with the text, in the page cache.
class TextFile {
  public:
    explicit TextFile(const std::string& bytes) {
        m_file.open();
        m_file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        m_file.flush();
    }
    QString path() const { return m_file.fileName(); }

  private:
    QTemporaryFile m_file;
};

const TextFile& textFile() {
    static const TextFile file(text());
    return file;
}

void countBytes(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text().size()));
    state.SetLabel(std::to_string(text().size() / 1'000'000) + " MB");
}

// ---- For comparison

/// Byte by byte with a callback a field and strtod, into columns that grow: the straightforward program.
void plainByteByByte(benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) {
        std::ifstream file(textFile().path().toStdString(), std::ios::binary);
        std::array<char, 4096> chunk{};
        std::vector<std::vector<double>> table(columns);
        std::size_t column = 0;
        std::string buffer;
        const std::function<void(const char*)> onField = [&](const char* field) {
            table[column++].push_back(std::strtod(field, nullptr));
        };
        const std::function<void()> onLine = [&] { column = 0; };
        while (file.read(chunk.data(), chunk.size()), file.gcount() > 0) {
            for (std::streamsize i = 0; i < file.gcount(); ++i) {
                const char c = chunk[static_cast<std::size_t>(i)];
                if (c == ',' || c == '\n') {
                    onField(buffer.c_str());
                    buffer.clear();
                    if (c == '\n')
                        onLine();
                } else {
                    buffer.push_back(c);
                }
            }
        }
        benchmark::DoNotOptimize(table);
    }
    countBytes(state);
}

/// The file mapped, fields found by from_chars itself, columns that grow: the quickest of the plain programs.
void plainMapped(benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) {
        const int descriptor = open(textFile().path().toUtf8().constData(), O_RDONLY | O_CLOEXEC);
        void* mapped = mmap(nullptr, text().size(), PROT_READ, MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
        const char* at = static_cast<const char*>(mapped);
        const char* const end = at + text().size();
        std::vector<std::vector<double>> table(columns);
        for (std::size_t column = 0; at < end; ++at) {
            double value = 0;
            at = std::from_chars(at, end, value).ptr;
            table[column].push_back(value);
            column = *at == '\n' ? 0 : column + 1;
        }
        benchmark::DoNotOptimize(table);
        munmap(mapped, text().size());
        close(descriptor);
    }
    countBytes(state);
}

// ---- The reader and its parts

std::shared_ptr<XPTableData> readFile(const QString& path, int delimiterType) {
    std::promise<std::shared_ptr<XPTableData>> finished;
    XPDataReader reader(std::make_unique<QFile>(path));
    reader.setDelimiterType(delimiterType);
    reader.setCompletionHandler(
        [&](std::shared_ptr<XPTableData> table) { finished.set_value(std::move(table)); });
    reader.setErrorHandler([&](const QString&) { finished.set_value(nullptr); });
    reader.startReading();
    return finished.get_future().get();
}

void reader(benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) {
        const auto table = readFile(textFile().path(), static_cast<int>(state.range(0)));
        if (table == nullptr || table->rowsNumber() != 1'000'000 || table->columnsNumber() != columns)
            state.SkipWithError("wrong table");
    }
    countBytes(state);
}

double peakResidentBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

/// 10,000,000 x 3 in a process of its own: peak memory against the table's values.
void memoryOfTenMillionRows(benchmark::State& state) {
    constexpr std::uint64_t rows = 10'000'000;
    std::string wide;
    for (std::uint64_t row = 0; row < rows; ++row)
        wide += "1,2.5,3\n";
    const TextFile file(wide);
    wide = std::string();
    for ([[maybe_unused]] auto iteration : state) {
        std::array<int, 2> pipe{};
        if (::pipe(pipe.data()) != 0)
            return state.SkipWithError("no pipe");
        const pid_t child = fork();
        if (child == 0) {
            const double before = peakResidentBytes(); // what the benchmark itself holds
            const auto table = readFile(file.path(), 1);
            const double peak = table ? peakResidentBytes() - before : 0;
            _exit(write(pipe[1], &peak, sizeof peak) == sizeof peak ? 0 : 1);
        }
        double peak = 0;
        if (read(pipe[0], &peak, sizeof peak) != sizeof peak || peak == 0)
            state.SkipWithError("the child failed");
        close(pipe[0]);
        close(pipe[1]);
        state.counters["peak_MB"] = peak / 1e6;
        state.counters["values_MB"] = static_cast<double>(rows * 3 * sizeof(double)) / 1e6;
    }
}

struct CountingSink {
    std::uint64_t bytes = 0;
    std::uint64_t fields = 0;
    void field(std::string_view text) {
        bytes += text.size();
        ++fields;
    }
    void line(char /*terminator*/) {}
};

template <class Parser>
void tokenize(benchmark::State& state, const std::function<std::unique_ptr<Parser>()>& make) {
    for ([[maybe_unused]] auto iteration : state) {
        const auto parser = make();
        CountingSink sink;
        for (std::size_t at = 0; at < text().size(); at += XPDataReader::chunkSize)
            parser->tokenize(std::string_view(text()).substr(at, XPDataReader::chunkSize), sink);
        benchmark::DoNotOptimize(sink);
    }
    countBytes(state);
}

void tokenizingFields(benchmark::State& state) {
    tokenize<CSVParser>(state, [] { return std::make_unique<CSVParser>(","); });
}

void tokenizingNumbers(benchmark::State& state) {
    tokenize<NumbersExtractor>(state, [] { return std::make_unique<NumbersExtractor>(); });
}

void summarizing(benchmark::State& state) {
    const auto table = readFile(textFile().path(), 1);
    for ([[maybe_unused]] auto iteration : state)
        table->summarizeColumns();
}

// The reader works on a thread of its own: all threads' time is what counts where the machine is busy.
BENCHMARK(plainByteByByte)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(plainMapped)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(reader)
    ->ArgName("delimiterType")
    ->Arg(1)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(tokenizingFields)->Unit(benchmark::kMillisecond);
BENCHMARK(tokenizingNumbers)->Unit(benchmark::kMillisecond);
BENCHMARK(summarizing)->Unit(benchmark::kMillisecond);
BENCHMARK(memoryOfTenMillionRows)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
