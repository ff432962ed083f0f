// A stand-in for libFuzzer where it is not available (g++ builds): feeds the
// target every seed file, then pseudo-random mutations of the seeds and
// random inputs, from a fixed random seed so a failure can be repeated.
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

void runOne(const Input &input)
{
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

// One to four random edits: a byte replaced, inserted, erased or flipped.
Input mutate(Input input, std::mt19937 &rng)
{
    for (int edits = 1 + int(rng() % 4); edits > 0; --edits) {
        const size_t at = input.empty() ? 0 : rng() % (input.size() + 1);
        const unsigned kind = rng() % 4;
        if (kind == 1)
            input.insert(input.begin() + std::ptrdiff_t(at), uint8_t(rng()));
        else if (at >= input.size())
            continue;
        else if (kind == 0)
            input[at] = uint8_t(rng());
        else if (kind == 2)
            input.erase(input.begin() + std::ptrdiff_t(at));
        else
            input[at] ^= uint8_t(1u << (rng() % 8));
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
    std::vector<Input> seeds;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("-runs=", 0) == 0) {
            runs = std::stol(arg.substr(6));
        } else if (arg.rfind("-seconds=", 0) == 0) {
            seconds = std::stod(arg.substr(9));
        } else {
            const QDir dir(QString::fromLocal8Bit(argv[i]));
            for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
                QFile file(dir.filePath(name));
                if (file.open(QIODevice::ReadOnly)) {
                    const QByteArray bytes = file.readAll();
                    seeds.emplace_back(bytes.cbegin(), bytes.cend());
                }
            }
        }
    }
    seeds.emplace_back();
    for (const Input &seed : seeds)
        runOne(seed);

    std::mt19937 rng(20240607);
    QElapsedTimer clock;
    clock.start();
    long done = 0;
    for (; done < runs && clock.elapsed() < seconds * 1000; ++done) {
        if (rng() % 4 == 0) {
            Input random(rng() % 96);
            for (uint8_t &b : random)
                b = uint8_t(rng());
            runOne(random);
        } else {
            runOne(mutate(seeds[rng() % seeds.size()], rng));
        }
    }
    std::printf("%zu seeds and %ld generated inputs ran without a crash\n", seeds.size(), done);
    return 0;
}
