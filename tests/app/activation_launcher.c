/* A launcher as a Wayland desktop has one: a window that has the keyboard focus asks the compositor for an activation
 * token (xdg_activation_v1) with the serial of that focus, prints "token TOKEN", and keeps its window in front until
 * another window takes the focus, when it prints "left" and exits. A program started with the token in
 * XDG_ACTIVATION_TOKEN may bring its window to the front. */
#define _GNU_SOURCE
#include "xdg-activation-v1-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

enum { width = 320, height = 200 };

static struct wl_compositor *compositor;
static struct wl_shm *shm;
static struct wl_seat *seat;
static struct xdg_wm_base *wm_base;
static struct xdg_activation_v1 *activation;
static struct wl_surface *surface;
static int asked, done;

static void global(void *data, struct wl_registry *registry, uint32_t name, const char *interface, uint32_t version)
{
    if (strcmp(interface, wl_compositor_interface.name) == 0)
        compositor = wl_registry_bind(registry, name, &wl_compositor_interface, 4);
    else if (strcmp(interface, wl_shm_interface.name) == 0)
        shm = wl_registry_bind(registry, name, &wl_shm_interface, 1);
    else if (strcmp(interface, wl_seat_interface.name) == 0 && !seat)
        seat = wl_registry_bind(registry, name, &wl_seat_interface, 1);
    else if (strcmp(interface, xdg_wm_base_interface.name) == 0)
        wm_base = wl_registry_bind(registry, name, &xdg_wm_base_interface, 1);
    else if (strcmp(interface, xdg_activation_v1_interface.name) == 0)
        activation = wl_registry_bind(registry, name, &xdg_activation_v1_interface, 1);
}

static void global_remove(void *data, struct wl_registry *registry, uint32_t name) {}

static const struct wl_registry_listener registry_listener = {global, global_remove};

static void ping(void *data, struct xdg_wm_base *base, uint32_t serial)
{
    xdg_wm_base_pong(base, serial);
}

static const struct xdg_wm_base_listener wm_base_listener = {ping};

static struct wl_buffer *grey_buffer(void)
{
    const int stride = width * 4, size = stride * height;
    int fd = memfd_create("launcher", MFD_CLOEXEC);
    if (fd < 0 || ftruncate(fd, size) < 0)
        return NULL;
    void *pixels = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (pixels == MAP_FAILED)
        return NULL;
    memset(pixels, 0x80, size);
    munmap(pixels, size);
    struct wl_shm_pool *pool = wl_shm_create_pool(shm, fd, size);
    struct wl_buffer *buffer = wl_shm_pool_create_buffer(pool, 0, width, height, stride, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    close(fd);
    return buffer;
}

static void surface_configure(void *data, struct xdg_surface *xdg_surface, uint32_t serial)
{
    static struct wl_buffer *buffer;
    xdg_surface_ack_configure(xdg_surface, serial);
    if (!buffer) {
        buffer = grey_buffer();
        wl_surface_attach(surface, buffer, 0, 0);
    }
    wl_surface_commit(surface);
}

static const struct xdg_surface_listener surface_listener = {surface_configure};

static void token_done(void *data, struct xdg_activation_token_v1 *token, const char *text)
{
    printf("token %s\n", text);
    fflush(stdout);
    xdg_activation_token_v1_destroy(token);
}

static const struct xdg_activation_token_v1_listener token_listener = {token_done};

static void keymap(void *d, struct wl_keyboard *k, uint32_t f, int32_t fd, uint32_t s)
{
    close(fd);
}

static void enter(void *data, struct wl_keyboard *keyboard, uint32_t serial, struct wl_surface *focus,
                  struct wl_array *keys)
{
    if (focus != surface || asked)
        return;
    asked = 1;
    struct xdg_activation_token_v1 *token = xdg_activation_v1_get_activation_token(activation);
    xdg_activation_token_v1_add_listener(token, &token_listener, NULL);
    xdg_activation_token_v1_set_serial(token, serial, seat);
    xdg_activation_token_v1_set_surface(token, surface);
    xdg_activation_token_v1_commit(token);
}

static void leave(void *data, struct wl_keyboard *keyboard, uint32_t serial, struct wl_surface *focus)
{
    if (focus == surface && asked) {
        printf("left\n");
        fflush(stdout);
        done = 1;
    }
}

static void key(void *d, struct wl_keyboard *k, uint32_t s, uint32_t t, uint32_t key, uint32_t state) {}

static void modifiers(void *d, struct wl_keyboard *k, uint32_t s, uint32_t a, uint32_t b, uint32_t c, uint32_t g) {}

static const struct wl_keyboard_listener keyboard_listener = {keymap, enter, leave, key, modifiers, NULL};

int main(void)
{
    struct wl_display *display = wl_display_connect(NULL);
    if (!display) {
        fprintf(stderr, "activation_launcher: no Wayland display\n");
        return 1;
    }
    struct wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registry_listener, NULL);
    wl_display_roundtrip(display);
    if (!compositor || !shm || !seat || !wm_base || !activation) {
        fprintf(stderr, "activation_launcher: the compositor lacks a global this needs (xdg_activation_v1?)\n");
        return 1;
    }
    xdg_wm_base_add_listener(wm_base, &wm_base_listener, NULL);
    wl_keyboard_add_listener(wl_seat_get_keyboard(seat), &keyboard_listener, NULL);
    surface = wl_compositor_create_surface(compositor);
    struct xdg_surface *xdg_surface = xdg_wm_base_get_xdg_surface(wm_base, surface);
    xdg_surface_add_listener(xdg_surface, &surface_listener, NULL);
    struct xdg_toplevel *toplevel = xdg_surface_get_toplevel(xdg_surface);
    xdg_toplevel_set_title(toplevel, "Launcher");
    wl_surface_commit(surface);
    while (!done && wl_display_dispatch(display) != -1) {
    }
    wl_display_disconnect(display);
    return done ? 0 : 1;
}
