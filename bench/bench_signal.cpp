// Death notices and signals beside what a user would otherwise write: the
// death of an object nobody watches (one failed look-up) beside an object
// with a plain virtual destructor, and an emission to 1, 10 and 100 handlers
// beside a loop over a vector of std::function.
#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <vector>

#include <zunSignal.h>

using zunSignalPrivate::NoThreadSafe;
using zunSignalPrivate::ThreadSafe;

namespace
{
    template <class Policy> struct Node : zunBaseT<Policy>
    {
        long sum = 0;
        void Add(int value) { sum += value; }
    };

    /// The peer: an object with a virtual destructor and nothing else.
    struct PlainNode
    {
        virtual ~PlainNode();
        long sum = 0;
        void Add(int value) { sum += value; }
    };
    // Out of line and not inlined, as the destructor of a watched object is.
    __attribute__((noinline)) PlainNode::~PlainNode() {} // NOLINT(modernize-use-equals-default)

    template <class Policy> void DeathOfUnwatchedObject(benchmark::State & state)
    {
        // Watched objects fill the map, so the failed look-up meets a real table.
        std::vector<std::unique_ptr<Node<Policy>>> watched(static_cast<std::size_t>(state.range(0)));
        for (auto & node : watched)
        {
            node.reset(new Node<Policy>);
            node->OnDestroySignalEmitterDestroyed();
        }
        for (auto _ : state)
        {
            Node<Policy> node;
            benchmark::DoNotOptimize(&node);
        }
    }

    void DeathOfPlainVirtualObject(benchmark::State & state)
    {
        for (auto _ : state)
        {
            PlainNode node;
            benchmark::DoNotOptimize(&node);
        }
    }

    template <class Policy> void EmitToHandlers(benchmark::State & state)
    {
        std::vector<Node<Policy>> nodes(static_cast<std::size_t>(state.range(0)));
        zunSignalPrivate::Signal<Policy, int> signal;
        for (auto & node : nodes)
            signal.Connect(&node, &Node<Policy>::Add);
        for (auto _ : state)
            signal(1);
        benchmark::DoNotOptimize(nodes.front().sum);
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }

    void CallStdFunctionVector(benchmark::State & state)
    {
        std::vector<PlainNode> nodes(static_cast<std::size_t>(state.range(0)));
        std::vector<std::function<void(int)>> handlers;
        handlers.reserve(nodes.size());
        for (auto & node : nodes)
            handlers.emplace_back([&node](int value) { node.Add(value); });
        for (auto _ : state)
            for (auto & handler : handlers)
                handler(1);
        benchmark::DoNotOptimize(nodes.front().sum);
        state.SetItemsProcessed(state.iterations() * state.range(0));
    }
}

BENCHMARK(DeathOfUnwatchedObject<NoThreadSafe>)->Arg(0)->Arg(10000);
BENCHMARK(DeathOfUnwatchedObject<ThreadSafe>)->Arg(0)->Arg(10000);
BENCHMARK(DeathOfPlainVirtualObject);

BENCHMARK(EmitToHandlers<NoThreadSafe>)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(EmitToHandlers<ThreadSafe>)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(CallStdFunctionVector)->Arg(1)->Arg(10)->Arg(100);
