// Keeps what was loaded, so that the page plays without a network. Files that are named by their contents never change; the
// page itself is fetched again whenever the server answers.
const KEEP = 'tarnwick %version%';

self.addEventListener('install', () => self.skipWaiting());
self.addEventListener('activate', (event) => event.waitUntil((async () => {
    for (const name of await caches.keys()) if (name !== KEEP) await caches.delete(name);
    await self.clients.claim();
})()));

async function keep(request, response) {
    if (response.ok) await (await caches.open(KEEP)).put(request, response.clone());
    return response;
}

async function answer(request) {
    const isNamedByContents = new URL(request.url).pathname.includes('/assets/');
    const kept = await caches.match(request, { ignoreSearch: !isNamedByContents });
    if (isNamedByContents && kept) return kept;
    try {
        return await keep(request, await fetch(request));
    } catch (problem) {
        if (kept) return kept;
        throw problem;
    }
}

self.addEventListener('fetch', (event) => {
    if (event.request.method === 'GET' && event.request.url.startsWith(self.registration.scope))
        event.respondWith(answer(event.request));
});
