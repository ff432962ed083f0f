// A stand-in for libFuzzer where it is not available (g++ builds): feeds the
// target every seed file, then pseudo-random edits of the seeds and random
// inputs, from a fixed random seed so a failure can be repeated.
//   fuzz_target [-runs=N] [-seconds=S] SEED_DIR...
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace {

using Input = std::vector<uint8_t>;

// One to four edits: a byte replaced, inserted or erased.
Input mutate(Input input, std::mt19937 &rng)
{
    for (int edits = 1 + int(rng() % 4); edits > 0; --edits) {
        const auto at = input.begin() + std::ptrdiff_t(input.empty() ? 0 : rng() % input.size());
        const unsigned kind = input.empty() ? 1 : rng() % 3;
        if (kind == 0)
            *at = uint8_t(rng());
        else if (kind == 1)
            input.insert(at, uint8_t(rng()));
        else
            input.erase(at);
    }
    return input;
}

} // namespace

int main(int argc, char **argv)
{
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    long runs = 100000;
    double seconds = 5;
    std::vector<Input> seeds{Input()};
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.starts_with("-runs=")) {
            runs = std::stol(arg.substr(6));
        } else if (arg.starts_with("-seconds=")) {
            seconds = std::stod(arg.substr(9));
        } else {
            const QDir dir(QString::fromLocal8Bit(argv[i]));
            for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
                QFile file(dir.filePath(name));
                const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
                seeds.emplace_back(bytes.cbegin(), bytes.cend());
            }
        }
    }
    for (const Input &seed : seeds)
        LLVMFuzzerTestOneInput(seed.data(), seed.size());

    std::mt19937 rng(20240607);
    QElapsedTimer clock;
    clock.start();
    long done = 0;
    for (; done < runs && clock.elapsed() < seconds * 1000; ++done) {
        Input input;
        if (rng() % 4 == 0) {
            input.resize(rng() % 96);
            for (uint8_t &byte : input)
                byte = uint8_t(rng());
        } else {
            input = mutate(seeds[rng() % seeds.size()], rng);
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%zu seeds and %ld generated inputs ran without a crash\n", seeds.size(), done);
    return 0;
}
