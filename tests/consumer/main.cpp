// Links the installed library through its package and uses a little of every
// family that has landed; exits non-zero if anything is off.
#include <zunFoundation.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace
{
    struct CountTriangles : zunPolyTess_CB
    {
        int vertices = 0;
        void Begin(int) override {}
        void Vertex(void *) override { ++vertices; }
        void End() override {}
    };
}

int main()
{
    int failures = 0;

    zunUTF16 wide("caf\xC3\xA9", 5);
    failures += wide.Length() != 4 || wide.Get16()[3] != 0xE9;

    zunString text("caf\xC3\xA9");
    zunStringW wideText;
    wideText = text;
    wideText.Printf(ZUN_W("%s=%d"), static_cast<const zunWChar *>(wideText), 4);
    failures += wideText.Length() != 6 || !(text == "caf\xC3\xA9") || zunString::Empty.Length() != 0;
    failures += zunCharHelper<char>::Compare("a", "A", StringCompareMode_Insensitive) != CompareResult_Equal;

    void * block = nullptr;
    failures += !zunMemAlloc(block, 64, true);
    failures += zunMemGetSize(block) != 64;
    zunMemFree(block);

    zunFastMesh<unsigned int> ids;
    for (unsigned int i = 0; i < 20; ++i)
        failures += !ids.Add(i * 3);
    failures += ids.Count() != 20 || ids.FindIf(0, 0xFFFFFFFF, [](unsigned int v) { return v == 30; }) != 10;

    zunStringList parts = zunString("a,,b").Split(",", 0);
    failures += parts.Count() != 2 || parts.Find("b") != 1;

    try
    {
        throw zunException("consumer:1", "int __cdecl main(void)").SetDebugDescription("%d", 7);
    }
    catch (const zunException & e)
    {
        failures += std::strcmp(e.GetDebugDescription(), "7") != 0;
    }

    zunRectangleT<int> overlap = zunRectangleT<int>(0, 0, 10, 10) & zunRectangleT<int>(5, 5, 10, 10);
    failures += overlap.left != 5 || overlap.width != 5;
    failures += !zunRectangleT<double>(0, 0, 1, 1).Contains(1.0, 1.0);

    CountTriangles counter;
    zunPolyTess tess(counter);
    double triangle[3][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    failures += !tess.IsValid();
    failures += tess.BeginPolygon();
    for (auto & corner : triangle)
        failures += tess.Vertex(corner, corner);
    failures += tess.EndPolygon();
    failures += counter.vertices != 3;

    failures += zunColor::Red().GetRGBA32() != 0xFF0000FFu;
    failures += std::fabs(zunBlendFunction(0.5).Eval(0.25) - 0.1059) > 0.0001;
    failures += zunInterpolator_Float(0.0, 10.0).Get(0.25, 2.0) != 1.25;
    zunToneMap toneMap;
    failures += !toneMap.SetStandardGamma(2.2) || toneMap.GetStandardGamma() != 2.2;

    zunBBox box;
    box.Extend(zunVector4T<double>(1, 2, 3));
    box.Extend(zunVector4T<double>(3, 2, 1));
    zunMatrix44 move;
    move.AddTranslation(zunVector4T<double>(1, 0, 0));
    move.Transform(box);
    failures += box.min.x != 2.0 || box.DX() != 2.0 || box.IsInvalid();
    zunVector4T<double> first, second;
    failures += !zunIntersectLineSphere(zunVector4T<double>(0, 0, 0), 2, zunVector4T<double>(-5, 0, 0),
                                        zunVector4T<double>(2, 0, 0), first, second);
    failures += first.x != 2.0;

    failures += zunSystem::GetPid() == 0 || zunSystem::KillProcess(0xFFFFFFFF);
    failures += zunDebug::Windows::RemoveMemBreak(nullptr) || zunDebug::Windows::GetDebugFlags().GetMask() != 0;
    struct Receiver : zunBaseT<zunSignalPrivate::ThreadSafe>
    {
        int sum = 0;
        void Add(int value) { sum += value; }
    };
    zunSignal<int> changed;
    Receiver * receiver = new Receiver;
    failures += !changed.Connect(receiver, &Receiver::Add);
    changed(5);
    failures += receiver->sum != 5;
    delete receiver;
    failures += !changed.m_handlers.empty();

    zunFastMesh<unsigned char> document;
    {
        std::unique_ptr<zunFile> out = zunFileMem::Create(document);
        zunChunk chunk(out.get());
        chunk.Create(0x454D414E);
        zunString("hull").Write(out.get());
        chunk.Close();
        out->Close();
    }
    failures += document.Count() != 17 || document[4] != 9;
    std::unique_ptr<zunFile> in = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(document));
    zunChunkHF found;
    found.Descend(in.get());
    zunString hull;
    hull.Read(in.get());
    int missing = -1;
    in->Read_Int32(missing);
    found.Ascend(in.get());
    failures += !(found == 0x454D414E) || !(hull == "hull") || missing != -1 || !in->IsEOF();

    zunFastMesh<unsigned char> shapes;
    {
        std::unique_ptr<zunFile> out = zunFileMem::Create(shapes);
        zunMatrix44::Identity.Write(out.get());
        zunColor::White().Write(out.get());
    }
    std::unique_ptr<zunFile> shapesIn = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(shapes));
    const zunMatrix44 placement(shapesIn.get(), zunMatrix44());
    const zunColor paint(shapesIn.get(), zunColor::Black());
    failures += shapes.Count() != 160 || !(placement == zunMatrix44::Identity) || paint.m_c0 != 1.0;

    zunPath scene("/tmp//consumer/scene.kelp");
    failures +=
        !scene.IsAbsolute() || scene.GetExtension(1) != "kelp" || scene.GetParent(1) != zunPath(R"(\TMP\consumer\)");
    failures += !zunPath::GetTemporaryPath().ExistsAs(zunPath::Folder);
    failures += zunDprintf("no target, no text\n") != 0;

    failures += zunSystem::GetCurrentProcessPath().GetLastComponent().IsEmpty();
    void * libm = zunSystem::DLOpen(zunPath("libm.so.6"));
    failures += libm == nullptr || zunSystem::DLSymbol(libm, zunString("cos")) == nullptr;
    const zunPath log("/tmp/consumer/release.log");
    log.Delete();
    zunSetReleaseLogFile(log);
    zunReleaseLog("x=%d\n", 1);
    char logged[8] = {};
    if (FILE * file = log.Open("rb"))
    {
        failures += std::fread(logged, 1, sizeof(logged) - 1, file) != 4;
        std::fclose(file);
    }
    failures += std::strcmp(logged, "x=1\n") != 0;
    char settingsName[] = "/tmp/zun_consumer_settings_XXXXXX";
    const int settingsFile = mkstemp(settingsName);
    failures += settingsFile < 0;
    if (settingsFile >= 0)
    {
        close(settingsFile);
        std::FILE * text = std::fopen(settingsName, "w");
        std::fputs("; kept\n[View]\nWidth = '800'\n", text);
        std::fclose(text);
        auto opened =
            zunSimpleSettingsManager::Get().OpenSettings(zunPath(settingsName), zunSimpleSettingsManager::Unmanaged);
        failures += opened.second != zunSimpleSettingsManager::NoError || !opened.first;
        if (opened.first)
        {
            zunSimpleSettings::SettingStatus status = zunSimpleSettings::BadValue;
            failures += opened.first->GetInt("view", "WIDTH", 0, &status) != 800 || status != zunSimpleSettings::Found;
            opened.first->SetDouble("View", "Zoom", 0.5);
            opened.first.reset();
        }
        char written[64] = {};
        text = std::fopen(settingsName, "r");
        failures += std::fread(written, 1, sizeof(written) - 1, text) == 0;
        std::fclose(text);
        failures += std::strcmp(written, "; kept\n[View]\nWidth='800'\nZoom=0.5000000000000000\n") != 0;
        std::remove(settingsName);
    }

    std::printf("consumer: %s\n", failures == 0 ? "ok" : "FAILED");
    return failures == 0 ? 0 : 1;
}
