// The cursor, the pointer and the keyboard through the X11 client library,
// loaded with dlopen so that the library neither needs X to load nor links it.
#include "Display.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>
#include <X11/keysym.h>
#include <dlfcn.h>

#include <cerrno>
#include <string>
#include <vector>

namespace zunPlatform
{
    namespace
    {
        struct XLibrary
        {
            decltype(&XOpenDisplay) openDisplay = nullptr;
            decltype(&XCloseDisplay) closeDisplay = nullptr;
            decltype(&XDefaultRootWindow) defaultRootWindow = nullptr;
            decltype(&XWarpPointer) warpPointer = nullptr;
            decltype(&XQueryPointer) queryPointer = nullptr;
            decltype(&XFlush) flush = nullptr;
            decltype(&XQueryKeymap) queryKeymap = nullptr;
            decltype(&XDisplayKeycodes) displayKeycodes = nullptr;
            decltype(&XGetKeyboardMapping) getKeyboardMapping = nullptr;
            decltype(&XFree) free = nullptr;
            decltype(&XkbGetState) getXkbState = nullptr;
            // From libXfixes; null when it is missing.
            decltype(&XFixesQueryExtension) fixesQueryExtension = nullptr;
            decltype(&XFixesGetCursorImage) fixesGetCursorImage = nullptr;
            decltype(&XFixesHideCursor) fixesHideCursor = nullptr;
            decltype(&XFixesShowCursor) fixesShowCursor = nullptr;
        };

        template <typename F> bool Bind(void * library, const char * name, F & function)
        {
            function = reinterpret_cast<F>(dlsym(library, name));
            return function != nullptr;
        }

        // The X libraries are loaded once and stay loaded for the process.
        const XLibrary * LoadX()
        {
            static const XLibrary * loaded = []
            {
                static XLibrary x;
                void * core = dlopen("libX11.so.6", RTLD_NOW | RTLD_LOCAL);
                if (core == nullptr)
                    return static_cast<const XLibrary *>(nullptr);
                const bool complete =
                    Bind(core, "XOpenDisplay", x.openDisplay) && Bind(core, "XCloseDisplay", x.closeDisplay) &&
                    Bind(core, "XDefaultRootWindow", x.defaultRootWindow) &&
                    Bind(core, "XWarpPointer", x.warpPointer) && Bind(core, "XQueryPointer", x.queryPointer) &&
                    Bind(core, "XFlush", x.flush) && Bind(core, "XQueryKeymap", x.queryKeymap) &&
                    Bind(core, "XDisplayKeycodes", x.displayKeycodes) &&
                    Bind(core, "XGetKeyboardMapping", x.getKeyboardMapping) && Bind(core, "XFree", x.free) &&
                    Bind(core, "XkbGetState", x.getXkbState);
                if (!complete)
                    return static_cast<const XLibrary *>(nullptr);
                if (void * fixes = dlopen("libXfixes.so.3", RTLD_NOW | RTLD_LOCAL))
                {
                    if (!(Bind(fixes, "XFixesQueryExtension", x.fixesQueryExtension) &&
                          Bind(fixes, "XFixesGetCursorImage", x.fixesGetCursorImage) &&
                          Bind(fixes, "XFixesHideCursor", x.fixesHideCursor) &&
                          Bind(fixes, "XFixesShowCursor", x.fixesShowCursor)))
                        x.fixesQueryExtension = nullptr;
                }
                return static_cast<const XLibrary *>(&x);
            }();
            return loaded;
        }

        struct Connection
        {
            bool tried = false;    // an open was attempted for the current choice
            bool disabled = false; // a test asked for no display
            Display * display = nullptr;
            bool hasFixes = false;
            // The keyboard mapping fetched by the last GetKeyboardLayout.
            int minKeycode = 0;
            int symbolsPerKeycode = 0;
            int group = 0;
            std::vector<KeySym> symbols;
        };

        Connection & State()
        {
            static Connection connection;
            return connection;
        }

        void Close(Connection & connection)
        {
            if (connection.display != nullptr)
                LoadX()->closeDisplay(connection.display);
            connection = Connection();
        }

        bool Open(Connection & connection, const char * name)
        {
            connection.tried = true;
            const XLibrary * x = LoadX();
            if (x == nullptr)
                return false;
            connection.display = x->openDisplay(name);
            if (connection.display == nullptr)
                return false;
            int eventBase = 0, errorBase = 0;
            // A request of a missing extension would be a protocol error, which the X
            // library's default handler answers by ending the process.
            connection.hasFixes = x->fixesQueryExtension != nullptr &&
                                  x->fixesQueryExtension(connection.display, &eventBase, &errorBase) != 0;
            return true;
        }

        Display * CurrentDisplay()
        {
            Connection & connection = State();
            if (!connection.tried && !connection.disabled)
                Open(connection, nullptr);
            return connection.display;
        }

        struct KeySymbols
        {
            unsigned int virtualKey;
            KeySym symbols[3];
        };

        // Virtual-key codes and the X symbols of their keys.
        const KeySymbols g_keys[] = {
            {0x08, {XK_BackSpace}},
            {0x09, {XK_Tab, XK_ISO_Left_Tab}},
            {0x0D, {XK_Return, XK_KP_Enter}},
            {0x10, {XK_Shift_L, XK_Shift_R}},
            {0x11, {XK_Control_L, XK_Control_R}},
            {0x12, {XK_Alt_L, XK_Alt_R, XK_ISO_Level3_Shift}},
            {0x14, {XK_Caps_Lock}},
            {0x1B, {XK_Escape}},
            {0x20, {XK_space}},
            {0x21, {XK_Prior}},
            {0x22, {XK_Next}},
            {0x23, {XK_End}},
            {0x24, {XK_Home}},
            {0x25, {XK_Left}},
            {0x26, {XK_Up}},
            {0x27, {XK_Right}},
            {0x28, {XK_Down}},
            {0x2D, {XK_Insert}},
            {0x2E, {XK_Delete}},
            {0x2F, {XK_Help}},
            {0x5B, {XK_Super_L}},
            {0x5C, {XK_Super_R}},
            {0x6A, {XK_KP_Multiply}},
            {0x6B, {XK_KP_Add}},
            {0x6D, {XK_KP_Subtract}},
            {0x6E, {XK_KP_Decimal}},
            {0x6F, {XK_KP_Divide}},
            {0x90, {XK_Num_Lock}},
            {0xA0, {XK_Shift_L}},
            {0xA1, {XK_Shift_R}},
            {0xA2, {XK_Control_L}},
            {0xA3, {XK_Control_R}},
            {0xA4, {XK_Alt_L}},
            {0xA5, {XK_Alt_R, XK_ISO_Level3_Shift}},
            {0xAD, {0x1008FF12}}, // XF86AudioMute
            {0xAE, {0x1008FF11}}, // XF86AudioLowerVolume
            {0xAF, {0x1008FF13}}, // XF86AudioRaiseVolume
            {0xBA, {XK_semicolon}},
            {0xBB, {XK_equal}},
            {0xBC, {XK_comma}},
            {0xBD, {XK_minus}},
            {0xBE, {XK_period}},
            {0xBF, {XK_slash}},
            {0xC0, {XK_grave}},
            {0xDB, {XK_bracketleft}},
            {0xDC, {XK_backslash}},
            {0xDD, {XK_bracketright}},
            {0xDE, {XK_apostrophe}},
            {0xE2, {XK_less}},
        };

        // The symbols of a virtual-key code; the ranges are computed.
        int SymbolsOf(unsigned int virtualKey, KeySym (&symbols)[3])
        {
            symbols[0] = symbols[1] = symbols[2] = NoSymbol;
            if (virtualKey >= 0x30 && virtualKey <= 0x39)
                symbols[0] = XK_0 + (virtualKey - 0x30);
            else if (virtualKey >= 0x41 && virtualKey <= 0x5A)
                symbols[0] = XK_a + (virtualKey - 0x41);
            else if (virtualKey >= 0x60 && virtualKey <= 0x69)
                symbols[0] = XK_KP_0 + (virtualKey - 0x60);
            else if (virtualKey >= 0x70 && virtualKey <= 0x83)
                symbols[0] = XK_F1 + (virtualKey - 0x70);
            else
            {
                for (const KeySymbols & key : g_keys)
                {
                    if (key.virtualKey == virtualKey)
                    {
                        symbols[0] = key.symbols[0];
                        symbols[1] = key.symbols[1];
                        symbols[2] = key.symbols[2];
                        break;
                    }
                }
            }
            return symbols[0] != NoSymbol ? 1 : 0;
        }

        // The virtual-key code of a key whose unshifted symbol is `symbol`; 0xFF if none.
        unsigned int VirtualKeyOf(KeySym symbol)
        {
            if (symbol >= XK_A && symbol <= XK_Z)
                symbol += XK_a - XK_A;
            if (symbol >= XK_0 && symbol <= XK_9)
                return 0x30 + static_cast<unsigned int>(symbol - XK_0);
            if (symbol >= XK_a && symbol <= XK_z)
                return 0x41 + static_cast<unsigned int>(symbol - XK_a);
            for (const KeySymbols & key : g_keys)
                if (key.symbols[0] == symbol)
                    return key.virtualKey;
            return 0xFF;
        }

        bool FetchMapping(Connection & connection)
        {
            const XLibrary * x = LoadX();
            int minimum = 0, maximum = 0;
            x->displayKeycodes(connection.display, &minimum, &maximum);
            int perKeycode = 0;
            KeySym * symbols = x->getKeyboardMapping(connection.display, static_cast<KeyCode>(minimum),
                                                     maximum - minimum + 1, &perKeycode);
            if (symbols == nullptr)
                return false;
            connection.minKeycode = minimum;
            connection.symbolsPerKeycode = perKeycode;
            connection.symbols.assign(symbols, symbols + static_cast<std::size_t>(maximum - minimum + 1) * perKeycode);
            x->free(symbols);
            XkbStateRec state;
            connection.group = x->getXkbState(connection.display, XkbUseCoreKbd, &state) == Success ? state.group : 0;
            return true;
        }

        // The first column of the active group: the core mapping holds two
        // columns (unshifted, shifted) per group for the first two groups.
        int GroupColumn(const Connection & connection)
        {
            const int column = connection.group < 2 ? 2 * connection.group : 0;
            return column + 1 < connection.symbolsPerKeycode ? column : 0;
        }

        KeySym SymbolAt(const Connection & connection, std::size_t key, int column)
        {
            return connection.symbols[key * static_cast<std::size_t>(connection.symbolsPerKeycode) +
                                      static_cast<std::size_t>(column)];
        }
    }

    bool GetCursorHandle(std::uintptr_t & cursor, unsigned int & error)
    {
        Display * display = CurrentDisplay();
        if (display == nullptr || !State().hasFixes)
        {
            error = display == nullptr ? ENXIO : ENOTSUP;
            return false;
        }
        XFixesCursorImage * image = LoadX()->fixesGetCursorImage(display);
        if (image == nullptr)
        {
            error = EIO;
            return false;
        }
        cursor = static_cast<std::uintptr_t>(image->cursor_serial);
        LoadX()->free(image);
        return true;
    }

    void ShowCursor(bool show)
    {
        Display * display = CurrentDisplay();
        if (display == nullptr || !State().hasFixes)
            return;
        const XLibrary * x = LoadX();
        if (show)
            x->fixesShowCursor(display, x->defaultRootWindow(display));
        else
            x->fixesHideCursor(display, x->defaultRootWindow(display));
        x->flush(display);
    }

    void SetCursor(std::uintptr_t) {}

    void SetCursorPosition(int x, int y)
    {
        Display * display = CurrentDisplay();
        if (display == nullptr)
            return;
        const XLibrary * xlib = LoadX();
        xlib->warpPointer(display, None, xlib->defaultRootWindow(display), 0, 0, 0, 0, x, y);
        xlib->flush(display);
    }

    bool GetCursorPosition(int & x, int & y)
    {
        Display * display = CurrentDisplay();
        if (display == nullptr)
            return false;
        const XLibrary * xlib = LoadX();
        Window root = None, child = None;
        int windowX = 0, windowY = 0;
        unsigned int buttons = 0;
        return xlib->queryPointer(display, xlib->defaultRootWindow(display), &root, &child, &x, &y, &windowX, &windowY,
                                  &buttons) != 0;
    }

    std::uintptr_t GetKeyboardLayout()
    {
        Connection & connection = State();
        if (CurrentDisplay() == nullptr || !FetchMapping(connection))
            return 0;
        // FNV-1a over the group and every symbol: equal mappings, equal identities.
        std::uint64_t hash = 1469598103934665603ull;
        auto mix = [&hash](std::uint64_t value)
        {
            for (int i = 0; i < 8; ++i, value >>= 8)
                hash = (hash ^ (value & 0xFF)) * 1099511628211ull;
        };
        mix(static_cast<std::uint64_t>(connection.group));
        mix(static_cast<std::uint64_t>(connection.symbolsPerKeycode));
        for (KeySym symbol : connection.symbols)
            mix(static_cast<std::uint64_t>(symbol));
        return hash != 0 ? static_cast<std::uintptr_t>(hash) : 1;
    }

    unsigned short ScanCharacter(zunWChar character, std::uintptr_t)
    {
        const Connection & connection = State();
        if (connection.symbols.empty())
            return 0xFFFF;
        // Latin-1 characters are their own symbols; others are 0x01000000 + code point.
        const KeySym wanted = (character >= 0x20 && character <= 0x7E) || (character >= 0xA0 && character <= 0xFF)
                                  ? static_cast<KeySym>(character)
                                  : static_cast<KeySym>(0x01000000 + character);
        const std::size_t keys = connection.symbols.size() / static_cast<std::size_t>(connection.symbolsPerKeycode);
        const int column = GroupColumn(connection);
        for (int shift = 0; shift < 2 && column + shift < connection.symbolsPerKeycode; ++shift)
        {
            for (std::size_t key = 0; key < keys; ++key)
            {
                if (SymbolAt(connection, key, column + shift) != wanted)
                    continue;
                const unsigned int virtualKey = VirtualKeyOf(SymbolAt(connection, key, column));
                return virtualKey == 0xFF ? 0xFFFF : static_cast<unsigned short>((shift << 8) | virtualKey);
            }
        }
        return 0xFFFF;
    }

    unsigned short GetAsyncKeyState(unsigned int virtualKey)
    {
        KeySym symbols[3];
        Connection & connection = State();
        Display * display = CurrentDisplay();
        if (display == nullptr || SymbolsOf(virtualKey, symbols) == 0)
            return 0;
        if (connection.symbols.empty() && !FetchMapping(connection))
            return 0;
        char keymap[32] = {};
        LoadX()->queryKeymap(display, keymap);
        const std::size_t keys = connection.symbols.size() / static_cast<std::size_t>(connection.symbolsPerKeycode);
        for (std::size_t key = 0; key < keys; ++key)
        {
            const std::size_t keycode = key + static_cast<std::size_t>(connection.minKeycode);
            if (keycode >= 256 || (keymap[keycode >> 3] & (1 << (keycode & 7))) == 0)
                continue;
            for (int column = 0; column < connection.symbolsPerKeycode; ++column)
                for (KeySym symbol : symbols)
                    if (symbol != NoSymbol && SymbolAt(connection, key, column) == symbol)
                        return 0x8000;
        }
        return 0;
    }

    bool UseDisplay(const char * name)
    {
        Connection & connection = State();
        Close(connection);
        if (name == nullptr)
            return false;
        if (*name == 0)
        {
            connection.disabled = true;
            return false;
        }
        return Open(connection, name);
    }
}
