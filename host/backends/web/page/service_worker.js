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
        const response = await fetch(request);
        return !response.ok && kept ? kept : await keep(request, response);
    } catch (problem) {
        if (kept) return kept;
        throw problem;
    }
}

// The page names the files that it had loaded before this worker was there.
self.addEventListener('message', (event) => event.waitUntil(Promise.all(event.data.map(answerFor))));

function answerFor(url) {
    return answer(new Request(url)).catch(() => {});
}

self.addEventListener('fetch', (event) => {
    if (event.request.method === 'GET' && event.request.url.startsWith(self.registration.scope))
        event.respondWith(answer(event.request));
});
