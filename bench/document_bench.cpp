// Reading and writing a datafile of 10,000 bodies, through real files: the
// whole path a save or an open takes (dictionary, XML, atomic write; read,
// parse, load into the world).
#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include "document/plist_writer.h"
#include "document/world_document.h"

namespace {

constexpr int kBodies = 10000;

void fillWorld(World& world) {
  for (int i = 0; i < kBodies; ++i) {
    Body* b = world.createBody();
    // Values with full-length decimal forms, as real simulations give.
    b->position = Vector::of(i / 3.0, -i / 7.0, i / 11.0);
    b->velocity = Vector::of(1.0 / (i + 1), 2.0 / (i + 3), -3.0 / (i + 7));
    b->mass = 1.0 + i / 13.0;
    b->radius = 0.1 + i / 17.0;
    b->color[0] = 0.3f;
    b->traceEnable = i % 2 == 0;
  }
}

void BM_WriteDatafile10000Bodies(benchmark::State& state) {
  World world;
  fillWorld(world);
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("world.ovd"));
  for (auto _ : state) {
    const bool ok = writePlistFile(path, PlistValue(saveWorldToDict(world, DocumentSections{})));
    benchmark::DoNotOptimize(ok);
  }
}
BENCHMARK(BM_WriteDatafile10000Bodies)->Unit(benchmark::kMillisecond);

void BM_ReadDatafile10000Bodies(benchmark::State& state) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("world.ovd"));
  {
    World source;
    fillWorld(source);
    writePlistFile(path, PlistValue(saveWorldToDict(source, DocumentSections{})));
  }
  World world;
  for (auto _ : state) {
    const DocumentReadResult read = readDocumentFile(path);
    loadToWorldFromDict(world, read.dict ? &*read.dict : nullptr, DocumentSections{});
    benchmark::DoNotOptimize(world.bodies->count());
  }
}
BENCHMARK(BM_ReadDatafile10000Bodies)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
