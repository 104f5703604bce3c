// Matrices: point-array transforms against Eigen and a plain memory copy of the
// same bytes (the memory bound), and the 4 by 4 product and inverse against
// Eigen and GLM.
#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <glm/glm.hpp>

#include <cstring>
#include <random>
#include <vector>

#include "zunMatrix44.h"

namespace
{
    zunMatrix44 Placement()
    {
        zunMatrix44 m;
        m.AddTranslation(zunVector4T<double>(1.5, -2.0, 0.25))
            .AddRotation(zunVector4T<double>(20.0, -35.0, 70.0), zunVector4T<double>(0.0, 0.0, 0.0))
            .AddScaling(zunVector4T<double>(1.5, 0.5, 2.0), zunVector4T<double>(0.0, 0.0, 0.0));
        return m;
    }

    template <typename T> std::vector<T> RandomValues(std::size_t count)
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> value(-100.0, 100.0);
        std::vector<T> values(count);
        for (auto & v : values)
            v = static_cast<T>(value(random));
        return values;
    }

    void SetBytes(benchmark::State & state, std::size_t bytes)
    {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
    }

    // --- Point arrays: float with a stride of 3 or 4 ---------------------------

    void BM_Copy_Float(benchmark::State & state, unsigned int stride)
    {
        const auto count = static_cast<std::size_t>(state.range(0));
        auto source = RandomValues<float>(count * stride);
        std::vector<float> target(source.size());
        for (auto _ : state)
        {
            std::memcpy(target.data(), source.data(), source.size() * sizeof(float));
            benchmark::ClobberMemory();
        }
        SetBytes(state, source.size() * sizeof(float));
    }

    void BM_Zun_TransformFloat_InPlace(benchmark::State & state, unsigned int stride)
    {
        const auto count = static_cast<unsigned int>(state.range(0));
        auto points = RandomValues<float>(std::size_t(count) * stride);
        const zunMatrix44 m = Placement();
        for (auto _ : state)
        {
            m.Transform(points.data(), count, stride);
            benchmark::ClobberMemory();
        }
        SetBytes(state, points.size() * sizeof(float));
    }

    void BM_Zun_TransformFloat_ToTarget(benchmark::State & state, unsigned int stride)
    {
        const auto count = static_cast<unsigned int>(state.range(0));
        auto source = RandomValues<float>(std::size_t(count) * stride);
        std::vector<float> target(source.size());
        const zunMatrix44 m = Placement();
        for (auto _ : state)
        {
            m.Transform(source.data(), target.data(), count, stride);
            benchmark::ClobberMemory();
        }
        SetBytes(state, source.size() * sizeof(float));
    }

    template <int Rows> void BM_Eigen_TransformFloat(benchmark::State & state)
    {
        using Points = Eigen::Map<Eigen::Matrix<float, Rows, Eigen::Dynamic>>;
        const auto count = static_cast<Eigen::Index>(state.range(0));
        auto source = RandomValues<float>(std::size_t(count) * Rows);
        std::vector<float> target(source.size());
        Points from(source.data(), Rows, count), to(target.data(), Rows, count);
        Eigen::Affine3f affine(Eigen::Matrix4d(Eigen::Map<const Eigen::Matrix4d>(Placement().m)).cast<float>());
        for (auto _ : state)
        {
            // The linear block, then the translation added to every column
            // (Eigen's fastest form here; Affine3f * points is slower).
            if constexpr (Rows == 3)
                to.noalias() = (affine.linear() * from).colwise() + affine.translation();
            else
            {
                to.template topRows<3>().noalias() =
                    (affine.linear() * from.template topRows<3>()).colwise() + affine.translation();
                to.row(3) = from.row(3);
            }
            benchmark::ClobberMemory();
        }
        SetBytes(state, source.size() * sizeof(float));
    }

    // --- Point arrays: zunVector4T<double> ----------------------------------------

    void BM_Copy_Vector4(benchmark::State & state)
    {
        const auto count = static_cast<std::size_t>(state.range(0));
        auto source = RandomValues<double>(count * 4);
        std::vector<double> target(source.size());
        for (auto _ : state)
        {
            std::memcpy(target.data(), source.data(), source.size() * sizeof(double));
            benchmark::ClobberMemory();
        }
        SetBytes(state, source.size() * sizeof(double));
    }

    void BM_Zun_TransformVector4_InPlace(benchmark::State & state)
    {
        const auto count = static_cast<unsigned int>(state.range(0));
        auto values = RandomValues<double>(std::size_t(count) * 4);
        std::vector<zunVector4T<double>> points(count);
        std::memcpy(static_cast<void *>(points.data()), values.data(), values.size() * sizeof(double));
        const zunMatrix44 m = Placement();
        for (auto _ : state)
        {
            m.Transform(points.data(), count);
            benchmark::ClobberMemory();
        }
        SetBytes(state, values.size() * sizeof(double));
    }

    void BM_Zun_TransformVector4_ToTarget(benchmark::State & state)
    {
        const auto count = static_cast<unsigned int>(state.range(0));
        auto values = RandomValues<double>(std::size_t(count) * 4);
        std::vector<zunVector4T<double>> source(count), target(count);
        std::memcpy(static_cast<void *>(source.data()), values.data(), values.size() * sizeof(double));
        const zunMatrix44 m = Placement();
        for (auto _ : state)
        {
            m.Transform(source.data(), target.data(), count);
            benchmark::ClobberMemory();
        }
        SetBytes(state, values.size() * sizeof(double));
    }

    void BM_Eigen_TransformVector4(benchmark::State & state)
    {
        using Points = Eigen::Map<Eigen::Matrix<double, 4, Eigen::Dynamic>>;
        const auto count = static_cast<Eigen::Index>(state.range(0));
        auto source = RandomValues<double>(std::size_t(count) * 4);
        std::vector<double> target(source.size());
        Points from(source.data(), 4, count), to(target.data(), 4, count);
        Eigen::Affine3d affine(Eigen::Map<const Eigen::Matrix4d>(Placement().m));
        for (auto _ : state)
        {
            to.topRows<3>().noalias() = (affine.linear() * from.topRows<3>()).colwise() + affine.translation();
            to.row(3) = from.row(3);
            benchmark::ClobberMemory();
        }
        SetBytes(state, source.size() * sizeof(double));
    }

    // --- 4 by 4 product and inverse -----------------------------------------------

    void BM_Zun_MulMtx(benchmark::State & state)
    {
        zunMatrix44 a = Placement();
        zunMatrix44 b;
        b.AddRotation(zunVector4T<double>(1.0, 2.0, 3.0), zunVector4T<double>(0.0, 0.0, 0.0));
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&b);
            a.MulMtx(b);
            benchmark::DoNotOptimize(&a);
        }
    }

    void BM_Eigen_MulMtx(benchmark::State & state)
    {
        Eigen::Matrix4d a = Eigen::Map<const Eigen::Matrix4d>(Placement().m);
        zunMatrix44 turn;
        turn.AddRotation(zunVector4T<double>(1.0, 2.0, 3.0), zunVector4T<double>(0.0, 0.0, 0.0));
        Eigen::Matrix4d b = Eigen::Map<const Eigen::Matrix4d>(turn.m);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(b.data());
            a = a * b;
            benchmark::DoNotOptimize(a.data());
        }
    }

    glm::dmat4 ToGlm(const zunMatrix44 & m)
    {
        glm::dmat4 g;
        std::memcpy(static_cast<void *>(&g[0][0]), m.m, sizeof(m.m));
        return g;
    }

    void BM_Glm_MulMtx(benchmark::State & state)
    {
        glm::dmat4 a = ToGlm(Placement());
        zunMatrix44 turn;
        turn.AddRotation(zunVector4T<double>(1.0, 2.0, 3.0), zunVector4T<double>(0.0, 0.0, 0.0));
        glm::dmat4 b = ToGlm(turn);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&b);
            a = a * b;
            benchmark::DoNotOptimize(&a);
        }
    }

    /// An affine placement, or a general matrix with a projective last row.
    zunMatrix44 InvertSample(bool affine)
    {
        zunMatrix44 m = Placement();
        if (!affine)
            m.AddPerspective(-1.0, 1.0, -0.75, 0.75, 1.0, 100.0);
        return m;
    }

    void BM_Zun_Invert(benchmark::State & state, bool affine)
    {
        const zunMatrix44 m = InvertSample(affine);
        zunMatrix44 out;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&m);
            benchmark::DoNotOptimize(m.Invert(out));
            benchmark::DoNotOptimize(&out);
        }
    }

    void BM_Eigen_Invert(benchmark::State & state, bool affine)
    {
        const Eigen::Matrix4d m = Eigen::Map<const Eigen::Matrix4d>(InvertSample(affine).m);
        Eigen::Matrix4d out;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(m.data());
            out = m.inverse();
            benchmark::DoNotOptimize(out.data());
        }
    }

    void BM_Eigen_InvertAffine(benchmark::State & state)
    {
        const Eigen::Affine3d m(Eigen::Map<const Eigen::Matrix4d>(InvertSample(true).m));
        Eigen::Affine3d out;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(m.data());
            out = m.inverse(Eigen::Affine);
            benchmark::DoNotOptimize(out.data());
        }
    }

    void BM_Glm_Invert(benchmark::State & state, bool affine)
    {
        const glm::dmat4 m = ToGlm(InvertSample(affine));
        glm::dmat4 out;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&m);
            out = glm::inverse(m);
            benchmark::DoNotOptimize(&out);
        }
    }
}

#define ZUN_POINT_COUNTS ->RangeMultiplier(10)->Range(100, 10000000)->Unit(benchmark::kMicrosecond)

BENCHMARK_CAPTURE(BM_Copy_Float, stride3, 3u) ZUN_POINT_COUNTS;
BENCHMARK_CAPTURE(BM_Zun_TransformFloat_InPlace, stride3, 3u) ZUN_POINT_COUNTS;
BENCHMARK_CAPTURE(BM_Zun_TransformFloat_ToTarget, stride3, 3u) ZUN_POINT_COUNTS;
BENCHMARK_TEMPLATE(BM_Eigen_TransformFloat, 3) ZUN_POINT_COUNTS;
BENCHMARK_CAPTURE(BM_Copy_Float, stride4, 4u) ZUN_POINT_COUNTS;
BENCHMARK_CAPTURE(BM_Zun_TransformFloat_InPlace, stride4, 4u) ZUN_POINT_COUNTS;
BENCHMARK_CAPTURE(BM_Zun_TransformFloat_ToTarget, stride4, 4u) ZUN_POINT_COUNTS;
BENCHMARK_TEMPLATE(BM_Eigen_TransformFloat, 4) ZUN_POINT_COUNTS;
BENCHMARK(BM_Copy_Vector4) ZUN_POINT_COUNTS;
BENCHMARK(BM_Zun_TransformVector4_InPlace) ZUN_POINT_COUNTS;
BENCHMARK(BM_Zun_TransformVector4_ToTarget) ZUN_POINT_COUNTS;
BENCHMARK(BM_Eigen_TransformVector4) ZUN_POINT_COUNTS;

BENCHMARK(BM_Zun_MulMtx);
BENCHMARK(BM_Eigen_MulMtx);
BENCHMARK(BM_Glm_MulMtx);
BENCHMARK_CAPTURE(BM_Zun_Invert, affine, true);
BENCHMARK_CAPTURE(BM_Eigen_Invert, affine, true);
BENCHMARK(BM_Eigen_InvertAffine);
BENCHMARK_CAPTURE(BM_Glm_Invert, affine, true);
BENCHMARK_CAPTURE(BM_Zun_Invert, general, false);
BENCHMARK_CAPTURE(BM_Eigen_Invert, general, false);
BENCHMARK_CAPTURE(BM_Glm_Invert, general, false);
