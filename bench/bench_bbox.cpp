// zunBBox::Extend over 10^6 mesh points beside the plain min/max loop a user
// would otherwise write, for double points (array and mesh forms, and one call
// per point), for float x, y, z triples, and with a matrix applied first.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <zunFoundation.h>

namespace
{
    constexpr unsigned int kPoints = 1000000;

    const std::vector<zunVector4T<double>> & Points()
    {
        static const std::vector<zunVector4T<double>> points = []
        {
            std::vector<zunVector4T<double>> made(kPoints);
            for (unsigned int i = 0; i < kPoints; ++i)
                made[i] = zunVector4T<double>(std::sin(i * 0.001) * i, std::cos(i * 0.37) * 50.0, (i % 997) * 0.1);
            return made;
        }();
        return points;
    }

    const std::vector<float> & Floats()
    {
        static const std::vector<float> floats = []
        {
            std::vector<float> made;
            for (auto & p : Points())
            {
                made.push_back(static_cast<float>(p.x));
                made.push_back(static_cast<float>(p.y));
                made.push_back(static_cast<float>(p.z));
            }
            return made;
        }();
        return floats;
    }

    void SetPointsProcessed(benchmark::State & state)
    {
        state.SetItemsProcessed(state.iterations() * kPoints);
    }

    /// The loop a user writes by hand: per axis the lesser and the greater.
    void PlainMinMax(const std::vector<zunVector4T<double>> & points)
    {
        double low[3] = {3.4e38, 3.4e38, 3.4e38}, high[3] = {-3.4e38, -3.4e38, -3.4e38};
        for (auto & p : points)
        {
            low[0] = std::min(low[0], p.x);
            low[1] = std::min(low[1], p.y);
            low[2] = std::min(low[2], p.z);
            high[0] = std::max(high[0], p.x);
            high[1] = std::max(high[1], p.y);
            high[2] = std::max(high[2], p.z);
        }
        benchmark::DoNotOptimize(low);
        benchmark::DoNotOptimize(high);
    }

    void BM_BBoxExtendArray(benchmark::State & state)
    {
        const auto & points = Points();
        for (auto _ : state)
        {
            zunBBox box;
            box.Extend(points.data(), kPoints, nullptr);
            benchmark::DoNotOptimize(box);
        }
        SetPointsProcessed(state);
    }

    void BM_BBoxExtendMesh(benchmark::State & state)
    {
        zunFastMesh<zunVector4T<double>> mesh;
        mesh.InsertRange(0, Points().data(), kPoints);
        for (auto _ : state)
        {
            zunBBox box;
            box.Extend(mesh, nullptr);
            benchmark::DoNotOptimize(box);
        }
        SetPointsProcessed(state);
    }

    void BM_BBoxExtendPointByPoint(benchmark::State & state)
    {
        const auto & points = Points();
        for (auto _ : state)
        {
            zunBBox box;
            for (auto & point : points)
                box.Extend(point);
            benchmark::DoNotOptimize(box);
        }
        SetPointsProcessed(state);
    }

    void BM_PlainMinMaxLoop(benchmark::State & state)
    {
        const auto & points = Points();
        for (auto _ : state)
        {
            PlainMinMax(points);
        }
        SetPointsProcessed(state);
    }

    void BM_BBoxExtendFloatTriples(benchmark::State & state)
    {
        const auto & floats = Floats();
        for (auto _ : state)
        {
            zunBBox box;
            box.Extend(floats.data(), kPoints, 0);
            benchmark::DoNotOptimize(box);
        }
        SetPointsProcessed(state);
    }

    void BM_PlainMinMaxLoopFloatTriples(benchmark::State & state)
    {
        const auto & floats = Floats();
        for (auto _ : state)
        {
            double low[3] = {3.4e38, 3.4e38, 3.4e38}, high[3] = {-3.4e38, -3.4e38, -3.4e38};
            for (unsigned int i = 0; i < kPoints; ++i)
            {
                for (int axis = 0; axis < 3; ++axis)
                {
                    double v = floats[3 * i + axis];
                    low[axis] = std::min(low[axis], v);
                    high[axis] = std::max(high[axis], v);
                }
            }
            benchmark::DoNotOptimize(low);
            benchmark::DoNotOptimize(high);
        }
        SetPointsProcessed(state);
    }

    zunMatrix44 SomeMatrix()
    {
        zunMatrix44 m;
        m.AddRotation(zunVector4T<double>(10, 20, 30), zunVector4T<double>(0, 0, 0));
        m.AddTranslation(zunVector4T<double>(1, 2, 3));
        return m;
    }

    void BM_BBoxExtendTransformed(benchmark::State & state)
    {
        const auto & points = Points();
        const zunMatrix44 m = SomeMatrix();
        for (auto _ : state)
        {
            zunBBox box;
            box.Extend(points.data(), kPoints, &m);
            benchmark::DoNotOptimize(box);
        }
        SetPointsProcessed(state);
    }

    void BM_TransformCopyThenMinMaxLoop(benchmark::State & state)
    {
        const auto & points = Points();
        const zunMatrix44 m = SomeMatrix();
        std::vector<zunVector4T<double>> copies(kPoints);
        for (auto _ : state)
        {
            m.Transform(points.data(), copies.data(), kPoints);
            PlainMinMax(copies);
        }
        SetPointsProcessed(state);
    }
}

BENCHMARK(BM_BBoxExtendArray)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BBoxExtendMesh)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BBoxExtendPointByPoint)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PlainMinMaxLoop)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BBoxExtendFloatTriples)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PlainMinMaxLoopFloatTriples)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BBoxExtendTransformed)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TransformCopyThenMinMaxLoop)->Unit(benchmark::kMicrosecond);
