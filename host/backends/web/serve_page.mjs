// Serves a folder of files on the loopback address, for trying the page: node serve_page.mjs FOLDER [PORT]
import { createServer } from 'node:http';
import { createReadStream, statSync } from 'node:fs';
import { extname, join, normalize } from 'node:path';

const [folder, port = '8080'] = process.argv.slice(2);
const KINDS = {
    '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css',
    '.json': 'application/json', '.png': 'image/png', '.flac': 'audio/flac', '.ogg': 'audio/ogg',
};

function fileOf(url) {
    const path = normalize(decodeURIComponent(new URL(url, 'http://localhost').pathname));
    const file = join(folder, path.endsWith('/') ? `${path}index.html` : path);
    return { file, size: statSync(file).size };
}

const server = createServer((request, response) => {
    try {
        const { file, size } = fileOf(request.url);
        response.writeHead(200, {
            'Content-Type': KINDS[extname(file)] ?? 'application/octet-stream',
            'Content-Length': size,
            'Cache-Control': file.includes('/assets/') ? 'max-age=31536000, immutable' : 'no-cache',
        });
        if (request.method === 'HEAD') response.end();
        else createReadStream(file).pipe(response);
    } catch {
        response.writeHead(404, { 'Content-Type': 'text/plain' }).end('There is no such file.');
    }
});
server.on('error', (problem) => {
    console.error(problem.code === 'EADDRINUSE' ? `port ${port} is taken: give another one with --port` : problem.message);
    process.exit(1);
});
server.listen(Number(port), '127.0.0.1', () => console.log(`http://127.0.0.1:${server.address().port}/`));
