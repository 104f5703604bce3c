// Quaternions: the Hamilton product and spherical interpolation, beside Eigen
// and GLM. zunSlerp computes the angle once in its constructor, so Evaluate is
// measured alone and also together with the construction.
#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <glm/gtc/quaternion.hpp>

#include "zunSlerp.h"

namespace
{
    const zunQuaternion kFrom = zunQuaternion::FromRotAnglesDeg(10.0, 20.0, 30.0);
    const zunQuaternion kTo = zunQuaternion::FromRotAnglesDeg(-40.0, 75.0, 110.0);
    const zunQuaternion kStep = zunQuaternion::FromRotAnglesDeg(0.5, -0.25, 0.125);

    Eigen::Quaterniond ToEigen(const zunQuaternion & q)
    {
        return Eigen::Quaterniond(q.r(), q.i(), q.j(), q.k());
    }

    glm::dquat ToGlm(const zunQuaternion & q)
    {
        return glm::dquat(q.r(), q.i(), q.j(), q.k());
    }

    // --- Product: a running orientation turned by a small step ----------------

    /// q = q · step in a chain, for any quaternion type with a product.
    template <typename Quaternion> void RunProduct(benchmark::State & state, Quaternion q, Quaternion step)
    {
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&step);
            q = q * step;
            benchmark::DoNotOptimize(&q);
        }
    }

    void BM_Zun_Product(benchmark::State & state)
    {
        RunProduct(state, kFrom, kStep);
    }

    void BM_Eigen_Product(benchmark::State & state)
    {
        RunProduct(state, ToEigen(kFrom), ToEigen(kStep));
    }

    void BM_Glm_Product(benchmark::State & state)
    {
        RunProduct(state, ToGlm(kFrom), ToGlm(kStep));
    }

    // --- Slerp: one value per call, t sweeping ------------------------------------

    double NextT(double t)
    {
        t += 0.001953125;
        return t > 1.0 ? 0.0 : t;
    }

    void BM_Zun_SlerpEvaluate(benchmark::State & state)
    {
        const zunSlerp slerp(kFrom, kTo, zunSlerp::Shortest);
        double t = 0.0;
        for (auto _ : state)
        {
            t = NextT(t);
            benchmark::DoNotOptimize(slerp.Evaluate(t));
        }
    }

    void BM_Zun_SlerpConstructAndEvaluate(benchmark::State & state)
    {
        zunQuaternion from = kFrom, to = kTo;
        double t = 0.0;
        for (auto _ : state)
        {
            t = NextT(t);
            benchmark::DoNotOptimize(&from);
            benchmark::DoNotOptimize(zunSlerp(from, to, zunSlerp::Shortest).Evaluate(t));
        }
    }

    void BM_Eigen_Slerp(benchmark::State & state)
    {
        const Eigen::Quaterniond from = ToEigen(kFrom), to = ToEigen(kTo);
        double t = 0.0;
        for (auto _ : state)
        {
            t = NextT(t);
            benchmark::DoNotOptimize(from.slerp(t, to));
        }
    }

    void BM_Glm_Slerp(benchmark::State & state)
    {
        const glm::dquat from = ToGlm(kFrom), to = ToGlm(kTo);
        double t = 0.0;
        for (auto _ : state)
        {
            t = NextT(t);
            benchmark::DoNotOptimize(glm::slerp(from, to, t));
        }
    }

    // --- Squad: a run through a segment of five keys ---------------------------

    void BM_Zun_SquadEvaluate(benchmark::State & state)
    {
        zunFastMesh<zunQuaternion> keys;
        for (int n = 0; n < 5; ++n)
            keys.Add(zunQuaternion::FromRotAnglesDeg(10.0 * n, -15.0 * n, 40.0 * n));
        zunSquad squad(keys, zunSquad::Shortest);
        double t = 0.0;
        for (auto _ : state)
        {
            t = NextT(t);
            benchmark::DoNotOptimize(squad.Evaluate(t, 2));
        }
    }
}

BENCHMARK(BM_Zun_Product);
BENCHMARK(BM_Eigen_Product);
BENCHMARK(BM_Glm_Product);
BENCHMARK(BM_Zun_SlerpEvaluate);
BENCHMARK(BM_Zun_SlerpConstructAndEvaluate);
BENCHMARK(BM_Eigen_Slerp);
BENCHMARK(BM_Glm_Slerp);
BENCHMARK(BM_Zun_SquadEvaluate);
