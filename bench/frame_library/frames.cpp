// SPDX-License-Identifier: GPL-3.0-or-later
// Preloaded into a program that draws with OpenGL on an X display, unmodified: tells the time of
// each frame that is put on the screen, and which picture it shows.
#include <GL/glx.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

using QueryDrawable = decltype(&glXQueryDrawable);
using ReadPixels = decltype(&glReadPixels);
using SwapBuffers = decltype(&glXSwapBuffers);

/** The function of that name of the OpenGL library that the program uses. */
template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/** Writes a line for each frame, see FrameRecords, to the pipe that the environment names. */
class FrameWriter {
public:
    FrameWriter()
    {
        const char *const path = std::getenv("TOUCHUI_FRAME_PIPE");
        m_pipe = path ? ::open(path, O_WRONLY | O_CLOEXEC) : -1;
        m_picturesToo = std::getenv("TOUCHUI_FRAME_PICTURES") != nullptr;
    }

    void write(Display *display, GLXDrawable window)
    {
        if (m_pipe < 0)
            return;
        const uint64_t picture = m_picturesToo ? pictureOf(display, window) : 0;
        // Taken afterwards: reading the picture waits until all of it has been drawn.
        timespec now = {};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        char line[64];
        const int length = std::snprintf(line, sizeof line, "%lld%09ld %016llx\n",
            static_cast<long long>(now.tv_sec), now.tv_nsec,
            static_cast<unsigned long long>(picture));
        if (::write(m_pipe, line, static_cast<size_t>(length)) != length)
            m_pipe = -1; // nobody reads any more
    }

private:
    /** A number that is the same for equal pictures, and in practice for no others. */
    uint64_t pictureOf(Display *display, GLXDrawable window)
    {
        unsigned int width = 0;
        unsigned int height = 0;
        m_queryDrawable(display, window, GLX_WIDTH, &width);
        m_queryDrawable(display, window, GLX_HEIGHT, &height);
        m_pixels.resize(size_t(width) * height);
        m_readPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA,
            GL_UNSIGNED_BYTE, m_pixels.data());
        uint64_t number = 14695981039346656037ull; // the hash of Fowler, Noll and Vo, by pixels
        for (const uint32_t pixel : m_pixels)
            number = (number ^ (pixel & 0xffffff)) * 1099511628211ull;
        return number;
    }

    int m_pipe = -1;
    bool m_picturesToo = false;
    QueryDrawable m_queryDrawable = next<QueryDrawable>("glXQueryDrawable");
    ReadPixels m_readPixels = next<ReadPixels>("glReadPixels");
    std::vector<uint32_t> m_pixels;
};

} // namespace

/** In the place of OpenGL's own function, which Qt's plugin for X finds by its name. */
extern "C" __attribute__((visibility("default"))) void glXSwapBuffers(
    Display *display, GLXDrawable window)
{
    static FrameWriter writer;
    static const SwapBuffers swapBuffers = next<SwapBuffers>("glXSwapBuffers");
    writer.write(display, window);
    swapBuffers(display, window);
}
